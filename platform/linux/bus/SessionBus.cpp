#include "platform/linux/bus/SessionBus.hpp"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace quorvane {
namespace {

// A bus's owner can read and forge every notice. An address that is inherited by mistake, for
// example through `sudo`, leads to another user's bus.
bool runsAsThisUser(sd_bus* bus) {
    ucred peer{};
    socklen_t size = sizeof peer;
    const int descriptor = sd_bus_get_fd(bus);
    return descriptor >= 0 && getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == geteuid();
}

int open(sd_bus** bus) {
    const int result = sd_bus_open_user(bus);
    if (result < 0 || runsAsThisUser(*bus)) return result;
    *bus = sd_bus_close_unref(*bus);
    return -EPERM;
}

}  // namespace

SessionBus::SessionBus(EventLoop& loop, Logger log)
    : BusConnection(loop, std::move(log), "session", open) {}

}  // namespace quorvane

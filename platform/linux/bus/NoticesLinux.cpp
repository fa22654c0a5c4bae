#include "platform/linux/bus/NoticesLinux.hpp"

#include <utility>

#include "platform/linux/bus/BusValues.hpp"
#include "platform/linux/files/PosixError.hpp"

namespace quorvane {
namespace {

constexpr char kNotice[] = "Notice";
constexpr char kDarwinNotice[] = "DarwinNotice";

// Sends one signal; `userInfo` is null for signals without it.
int send(sd_bus* bus, const char* member, const std::string& name,
         const PropertyDictionary* userInfo) {
    sd_bus_message* message = nullptr;
    int result = sd_bus_message_new_signal(bus, &message, kNoticePath, kNoticeInterface, member);
    if (result >= 0)
        result = sd_bus_message_append_basic(message, SD_BUS_TYPE_STRING, name.c_str());
    if (result >= 0 && userInfo) result = appendBusDictionary(message, *userInfo);
    if (result >= 0) result = sd_bus_send(bus, message, nullptr);
    sd_bus_message_unref(message);
    return result;
}

void post(SessionBus& bus, const Logger& log, const char* member, const std::string& name,
          const PropertyDictionary* userInfo) {
    sd_bus* connection = bus.connection();
    if (!connection) return;
    const int result = send(connection, member, name, userInfo);
    if (result < 0) log.error("bus: %{public}s not posted: %{public}s", name, errnoText(-result));
}

Handle observe(SessionBus& bus, const char* member, const std::string& name,
               std::function<void(sd_bus_message*)> handler) {
    if (name.find_first_of("'\\") != std::string::npos) return {};
    return bus.match(std::string{"type='signal',path='"} + kNoticePath + "',interface='" +
                         kNoticeInterface + "',member='" + member + "',arg0='" + name + "'",
                     std::move(handler));
}

}  // namespace

DistributedNotices makeDistributedNotices(SessionBus& bus, LocalNotices& localNotices, Logger log) {
    const auto postNotice = [&bus, log](const std::string& name,
                                        const PropertyDictionary& userInfo) {
        if (!LocalNotices::owns(name)) post(bus, log, kNotice, name, &userInfo);
    };
    const auto observeNotice = [&bus, &localNotices, log](const std::string& name,
                                                          DistributedNotices::Handler handler) {
        if (LocalNotices::owns(name)) return localNotices.observe(name, std::move(handler));
        return observe(bus, kNotice, name,
                       [log, name, handler = std::move(handler)](sd_bus_message* message) {
                           PropertyDictionary userInfo;
                           if (sd_bus_message_has_signature(message, "sa{sv}") > 0 &&
                               sd_bus_message_skip(message, "s") >= 0 &&
                               readBusDictionary(message, userInfo) >= 0)
                               return handler(userInfo);
                           log.error("bus: %{public}s has an unexpected signature; dropped", name);
                       });
    };
    return {.post = postNotice, .observe = observeNotice};
}

DarwinNotices makeDarwinNotices(SessionBus& bus, Logger log) {
    return {.post = [&bus, log](
                        const std::string& name) { post(bus, log, kDarwinNotice, name, nullptr); },
            .observe =
                [&bus](const std::string& name, std::function<void()> handler) {
                    return observe(bus, kDarwinNotice, name,
                                   [handler = std::move(handler)](sd_bus_message*) { handler(); });
                }};
}

}  // namespace quorvane

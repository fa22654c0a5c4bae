// The process that holds the card's Wayland connection. Compositors leave surfaces above the lock
// screen on the desktop after the unlock, so a stopped add-on must lose them too. The add-on gives
// this process its socket and a timer. This process connects the socket, because the compositor
// admits the program that connects, and then only waits. The add-on, whose socket it remains, is
// the Wayland client. It kills this process at the unlock, and sets the timer again as long as it
// runs and shows a card.
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

namespace {

// The descriptors that the add-on gives to this process.
constexpr int kConnection = STDIN_FILENO;
constexpr int kTimer = STDOUT_FILENO;
constexpr int kAddOn = STDERR_FILENO + 1;  // a pipe, which the add-on only reads

bool connectToCompositor() {
    const auto variable = [](const char* name) -> std::string {
        const char* const value = std::getenv(name);
        return value ? value : "";
    };
    std::string path = variable("WAYLAND_DISPLAY");
    if (!path.starts_with('/')) path = variable("XDG_RUNTIME_DIR") + "/" + path;
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    if (path.size() >= sizeof address.sun_path) return false;
    path.copy(address.sun_path, path.size());
    const auto* const place = reinterpret_cast<const sockaddr*>(&address);
    return connect(kConnection, place, sizeof address) == 0;
}

}  // namespace

int main() {
    if (!connectToCompositor() || write(kAddOn, "", 1) != 1) return EXIT_FAILURE;
    // poll reports a closed connection or pipe without a requested event.
    pollfd ends[] = {{kTimer, POLLIN, 0}, {kConnection, 0, 0}, {kAddOn, 0, 0}};
    while (poll(ends, std::size(ends), -1) < 0 && errno == EINTR) {
    }
    // Ends the connection for the add-on too, which may be stopped.
    shutdown(kConnection, SHUT_RDWR);
    return EXIT_SUCCESS;
}

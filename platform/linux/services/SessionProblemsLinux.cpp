#include "platform/linux/services/SessionProblemsLinux.hpp"

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <system_error>

#include "platform/SessionProblems.hpp"
#include "platform/linux/files/Environment.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/ports/MessagePortsLinux.hpp"
#include "platform/linux/ports/PortFolder.hpp"
#include "platform/linux/services/HeadlessPlatform.hpp"

namespace quorvane {

SessionVariables sessionVariables() {
    return {.sessionType = environmentVariable("XDG_SESSION_TYPE"),
            .display = environmentVariable("DISPLAY"),
            .waylandDisplay = environmentVariable("WAYLAND_DISPLAY"),
            .desktop = environmentVariable("XDG_CURRENT_DESKTOP")};
}

std::optional<std::string> screenProblem(const SessionVariables& session) {
    if (isWaylandSession(session)) return waylandProblem(session.desktop);
    if (session.display.empty())
        return "there is no session to show a card in: neither WAYLAND_DISPLAY nor DISPLAY is set; "
               "use a terminal of the session";
    return std::nullopt;
}

std::optional<std::string> findPortsProblem() {
    const auto folder = portFolderOfUser();
    const auto runtime = folder.parent_path();
    if (access(runtime.c_str(), W_OK | X_OK) != 0)
        return "there is no folder for the sockets of host and add-on: " + runtime.string() +
               " cannot be used (" + std::system_category().message(errno) +
               "); log in at the login screen, or set XDG_RUNTIME_DIR to a folder of yours with "
               "mode 0700";
    if (access(folder.c_str(), F_OK) == 0 && !PortFolder::open(folder, PortFolder::Purpose::serve))
        return "the folder for the sockets of host and add-on must belong to you alone: " +
               folder.string() + "; remove it";
    return std::nullopt;
}

namespace {

// The reply of Hyprland's control socket, whose requests are words without a terminator; empty
// without a reply.
std::string hyprlandVersion() {
    const std::string path = std::string{environmentVariable("XDG_RUNTIME_DIR")} + "/hypr/" +
                             std::string{environmentVariable("HYPRLAND_INSTANCE_SIGNATURE")} +
                             "/.socket.sock";
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    if (path.size() >= sizeof address.sun_path) return {};
    path.copy(address.sun_path, path.size());
    const FileDescriptor socket{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    constexpr timeval kPatience{1, 0};
    setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof kPatience);
    constexpr std::string_view kRequest = "version";
    char answer[64];
    if (connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        write(socket.get(), kRequest.data(), kRequest.size()) < 0)
        return {};
    const ssize_t length = read(socket.get(), answer, sizeof answer);
    return {answer, length > 0 ? static_cast<std::size_t>(length) : 0};
}

}  // namespace

SessionProblems findSessionProblems(const LiveServices& services) {
    const SessionVariables session = sessionVariables();
    SessionProblems problems{.screen = screenProblem(session), .ports = findPortsProblem()};
    if (isWaylandSession(session))
        problems.advice = waylandAdvice(session.desktop, hyprlandVersion());
    if (!HeadlessPlatform::of(services).sessionBus.connection())
        problems.bus =
            "there is no session bus, which connects the players and the add-on; log in at the "
            "login screen, or start the session with dbus-run-session";
    return problems;
}

}  // namespace quorvane

#include "platform/linux/services/SessionProblemsLinux.hpp"

#include <unistd.h>

#include <system_error>

#include "platform/SessionProblems.hpp"
#include "platform/linux/files/Environment.hpp"
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

std::string portsProblem(std::string_view runtimeVariable, const std::string& runtimeFolder,
                         const std::string& reason) {
    std::string found = "XDG_RUNTIME_DIR is " + runtimeFolder + ", which";
    if (runtimeVariable.empty())
        found = "XDG_RUNTIME_DIR is not set, and " + runtimeFolder;
    else if (!runtimeVariable.starts_with('/'))
        found = "XDG_RUNTIME_DIR is not an absolute path, and " + runtimeFolder;
    return "there is no runtime folder, where host and add-on meet: " + found +
           " cannot be used (" + reason +
           "); log in at the login screen, or set the variable to a folder of yours with mode 0700";
}

std::optional<std::string> findPortsProblem() {
    const auto folder = portFolderOfUser();
    const auto runtime = folder.parent_path();
    if (access(runtime.c_str(), W_OK | X_OK) != 0)
        return portsProblem(environmentVariable("XDG_RUNTIME_DIR"), runtime.string(),
                            std::system_category().message(errno));
    if (access(folder.c_str(), F_OK) == 0 && !PortFolder::open(folder, PortFolder::Purpose::serve))
        return "the folder where host and add-on meet is not a private one of yours: " +
               folder.string() + "; remove it";
    return std::nullopt;
}

SessionProblems findSessionProblems(const LiveServices& services) {
    SessionProblems problems{.screen = screenProblem(sessionVariables()),
                             .ports = findPortsProblem()};
    if (!HeadlessPlatform::of(services).sessionBus.connection())
        problems.bus =
            "there is no session bus, on which players and the add-on are heard; log in at the "
            "login screen, or start the session with dbus-run-session";
    return problems;
}

}  // namespace quorvane

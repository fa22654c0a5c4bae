// The Wayland sessions in which a card can appear above the lock screen. Pure values.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvane {

// Environment variables; an unset one is empty.
struct SessionVariables {
    std::string_view sessionType{};     // XDG_SESSION_TYPE
    std::string_view display{};         // DISPLAY
    std::string_view waylandDisplay{};  // WAYLAND_DISPLAY
    std::string_view desktop{};         // XDG_CURRENT_DESKTOP
};

// Whether the session's own display is Wayland. Its X server, if there is one, shows no lock
// screen.
bool isWaylandSession(const SessionVariables& session);

// Why no card can appear in a Wayland session of this desktop, and what to do; nullopt when one
// can.
std::optional<std::string> waylandProblem(std::string_view desktop);

}  // namespace quorvane

// The Wayland compositors that let a card appear above their lock screens, and how. Pure values.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvane {

struct SessionVariables {
    std::string_view sessionType{};     // XDG_SESSION_TYPE
    std::string_view display{};         // DISPLAY
    std::string_view waylandDisplay{};  // WAYLAND_DISPLAY
    std::string_view desktop{};         // XDG_CURRENT_DESKTOP
};

// Whether the session's own display is Wayland. Its X server, if there is one, shows no lock
// screen.
bool isWaylandSession(const SessionVariables& session);

enum class WaylandDoor {
    none,
    kdeOverlay,       // KDE's own protocol
    hyprlandRule,     // a rule in the user's configuration, for the card's namespace
    widgetNamespace,  // Wayfire shows every overlay of a certain namespace
};

// The compositor's way; `none` also for a compositor that is not known.
WaylandDoor waylandDoorOf(std::string_view desktop);
// The namespace that its surfaces have.
const char* waylandNamespace(WaylandDoor door);

// Why no card can appear in this Wayland session, and what to do; nullopt when one can.
std::optional<std::string> waylandProblem(std::string_view desktop);

}  // namespace quorvane

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

// The mechanism by which a compositor admits the card above its lock screen.
struct WaylandSupport {
    const char* layerNamespace = "quorvane-card";
    bool needsKdeOverlay = false;  // only if the compositor offers the protocol to the add-on
    bool hasLockNotices = false;   // hyprland_lock_notify_v1
};

// Nullopt for a desktop in whose Wayland session no card can appear.
std::optional<WaylandSupport> waylandSupport(std::string_view desktop);
// Why no card can appear there, and what to do; nullopt when one can.
std::optional<std::string> waylandProblem(std::string_view desktop);
// What the user must do for the card. `hyprlandVersion` is Hyprland's reply about its version.
std::optional<std::string> waylandAdvice(std::string_view desktop,
                                         std::string_view hyprlandVersion);

}  // namespace quorvane

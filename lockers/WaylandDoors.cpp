#include "lockers/WaylandDoors.hpp"

#include <algorithm>
#include <array>
#include <cctype>

namespace quorvane {
namespace {

struct Compositor {
    std::string_view desktop;  // one of the names in XDG_CURRENT_DESKTOP, in any case
    std::string_view name;
    WaylandDoor door = WaylandDoor::none;
    std::string_view reason = "shows nothing above its lock screen";
};

constexpr std::array kCompositors = std::to_array<Compositor>({
    {"KDE", "KDE Plasma", WaylandDoor::kdeOverlay},
    {"Hyprland", "Hyprland", WaylandDoor::hyprlandRule},
    {"Wayfire", "Wayfire", WaylandDoor::widgetNamespace},
    {"COSMIC", "COSMIC", WaylandDoor::none,
     "shows chosen surfaces above its lock screen, but the card does not use that yet"},
    {"GNOME", "GNOME", WaylandDoor::none,
     "shows nothing above its lock screen, which has media controls of its own"},
    {"sway", "sway"},
    {"labwc", "labwc"},
    {"niri", "niri"},
    {"river", "river"},
});

bool isSame(std::string_view one, std::string_view other) {
    return std::ranges::equal(one, other, [](unsigned char a, unsigned char b) {
        return std::tolower(a) == std::tolower(b);
    });
}

// The variable holds names with colons between them.
const Compositor* compositorOf(std::string_view desktop) {
    while (!desktop.empty()) {
        const auto end = std::min(desktop.find(':'), desktop.size());
        const std::string_view name = desktop.substr(0, end);
        for (const Compositor& compositor : kCompositors)
            if (isSame(name, compositor.desktop)) return &compositor;
        desktop.remove_prefix(std::min(end + 1, desktop.size()));
    }
    return nullptr;
}

}  // namespace

bool isWaylandSession(const SessionVariables& session) {
    if (session.waylandDisplay.empty()) return false;
    return session.display.empty() || session.sessionType != "x11";
}

WaylandDoor waylandDoorOf(std::string_view desktop) {
    const Compositor* const compositor = compositorOf(desktop);
    return compositor ? compositor->door : WaylandDoor::none;
}

const char* waylandNamespace(WaylandDoor door) {
    return door == WaylandDoor::widgetNamespace ? "de-widget" : "quorvane-card";
}

std::optional<std::string> waylandProblem(std::string_view desktop) {
    if (waylandDoorOf(desktop) != WaylandDoor::none) return std::nullopt;
    const Compositor* const compositor = compositorOf(desktop);
    std::string subject{"this Wayland compositor"};
    std::string reason{"is not known to show anything above its lock screen"};
    if (compositor) {
        subject = compositor->name;
        reason = compositor->reason;
    }
    return "no card can appear: " + subject + " " + reason +
           "; use an X11 session, or KDE Plasma, Hyprland or Wayfire";
}

}  // namespace quorvane

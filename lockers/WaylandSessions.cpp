#include "lockers/WaylandSessions.hpp"

#include <algorithm>
#include <cctype>

namespace quorvane {
namespace {

constexpr std::string_view kShowsNothing = "shows nothing above its lock screen";
constexpr std::string_view kNotUsed =
    "can show chosen surfaces above its lock screen, but the card does not use that yet";

struct Compositor {
    std::string_view desktop;  // one of the names in XDG_CURRENT_DESKTOP, in any case
    std::string_view name;
    std::string_view problem;  // empty where the card appears
};

constexpr Compositor kCompositors[] = {
    {"KDE", "KDE Plasma", ""},
    {"Hyprland", "Hyprland", kNotUsed},
    {"Wayfire", "Wayfire", kNotUsed},
    {"COSMIC", "COSMIC", kNotUsed},
    {"GNOME", "GNOME", "shows nothing above its lock screen, which has media controls of its own"},
    {"sway", "sway", kShowsNothing},
    {"labwc", "labwc", kShowsNothing},
    {"niri", "niri", kShowsNothing},
    {"river", "river", kShowsNothing},
};
constexpr Compositor kUnknown{"", "this Wayland compositor",
                              "is not known to show anything above its lock screen"};

bool isSame(std::string_view one, std::string_view other) {
    return std::ranges::equal(one, other, [](unsigned char a, unsigned char b) {
        return std::tolower(a) == std::tolower(b);
    });
}

// The variable holds names with colons between them.
const Compositor& compositorOf(std::string_view desktop) {
    while (!desktop.empty()) {
        const auto end = std::min(desktop.find(':'), desktop.size());
        const std::string_view name = desktop.substr(0, end);
        for (const Compositor& compositor : kCompositors)
            if (isSame(name, compositor.desktop)) return compositor;
        desktop.remove_prefix(std::min(end + 1, desktop.size()));
    }
    return kUnknown;
}

}  // namespace

bool isWaylandSession(const SessionVariables& session) {
    if (session.waylandDisplay.empty()) return false;
    return session.display.empty() || session.sessionType != "x11";
}

std::optional<std::string> waylandProblem(std::string_view desktop) {
    const Compositor& compositor = compositorOf(desktop);
    if (compositor.problem.empty()) return std::nullopt;
    return "no card can appear: " + std::string{compositor.name} + " " +
           std::string{compositor.problem} + "; use an X11 session or KDE Plasma";
}

}  // namespace quorvane

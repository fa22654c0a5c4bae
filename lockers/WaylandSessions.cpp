#include "lockers/WaylandSessions.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <limits>
#include <ranges>

namespace quorvane {
namespace {

constexpr std::string_view kShowsNothing = "shows nothing above its lock screen";

struct Compositor {
    std::string_view desktop;  // one of the names in XDG_CURRENT_DESKTOP, in any case
    std::string_view name;
    std::string_view problem{};               // empty where the card appears
    std::optional<WaylandSupport> support{};  // without a problem
};

constexpr Compositor kCompositors[] = {
    {"KDE", "KDE Plasma", "", WaylandSupport{.needsKdeOverlay = true}},
    {"Hyprland", "Hyprland", "", WaylandSupport{.hasLockNotices = true}},
    {"Wayfire", "Wayfire", "", WaylandSupport{.layerNamespace = "de-widget"}},
    {"COSMIC", "COSMIC",
     "can show chosen surfaces above its lock screen, but the card does not use that yet"},
    {"GNOME", "GNOME", "shows nothing above its lock screen, which has its own media controls"},
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
    for (const auto name : std::views::split(desktop, ':'))
        for (const Compositor& compositor : kCompositors)
            if (isSame({name.begin(), name.end()}, compositor.desktop)) return compositor;
    return kUnknown;
}

constexpr int kFirstHyprland = 49;

// The number after the first "0." in a text such as "Hyprland 0.53.1 built from branch v0.53.1". A
// text without it is of a newer version, or none.
int minorVersionOf(std::string_view text) {
    const auto zero = text.find(" 0.");
    int version = std::numeric_limits<int>::max();
    if (zero != text.npos)
        std::from_chars(text.data() + zero + 3, text.data() + text.size(), version);
    return version;
}

}  // namespace

bool isWaylandSession(const SessionVariables& session) {
    if (session.waylandDisplay.empty()) return false;
    return session.display.empty() || session.sessionType != "x11";
}

std::optional<WaylandSupport> waylandSupport(std::string_view desktop) {
    return compositorOf(desktop).support;
}

std::optional<std::string> waylandProblem(std::string_view desktop) {
    const Compositor& compositor = compositorOf(desktop);
    if (compositor.support) return std::nullopt;
    return "no card can appear: " + std::string{compositor.name} + " " +
           std::string{compositor.problem} +
           "; use an X11 session, KDE Plasma, Hyprland or Wayfire";
}

std::optional<std::string> waylandAdvice(std::string_view desktop,
                                         std::string_view hyprlandVersion) {
    const std::string_view name = compositorOf(desktop).name;
    if (name == "Wayfire")
        return "Wayfire does not announce its locks; start the locker with quorvane-host, for "
               "example: quorvane-host lock -- swaylock --ready-fd 3";
    if (name != "Hyprland") return std::nullopt;
    const int version = minorVersionOf(hyprlandVersion);
    if (version < kFirstHyprland) return "the card needs Hyprland 0.49 or newer; update it";
    std::string_view rule =
        R"(hl.layer_rule({ match = { namespace = "quorvane-card" }, above_lock = 2 }))";
    if (version < 55) rule = "layerrule = above_lock 2, match:namespace quorvane-card";
    if (version < 53) rule = "layerrule = abovelock true, quorvane-card";
    return "Hyprland shows the card only with this line in its configuration: " + std::string{rule};
}

}  // namespace quorvane

// Which Wayland sessions show a card, and which areas it keeps clear of there.
#include <gtest/gtest.h>

#include "lockers/GreeterZones.hpp"
#include "lockers/KdeSettings.hpp"
#include "lockers/WaylandSessions.hpp"

namespace quorvane {
namespace {

TEST(WaylandSessions, TakeTheSessionsOwnDisplay) {
    EXPECT_FALSE(isWaylandSession({.sessionType = "x11", .display = ":0"}));
    EXPECT_TRUE(isWaylandSession({.sessionType = "wayland", .waylandDisplay = "wayland-0"}));
    EXPECT_TRUE(isWaylandSession(
        {.sessionType = "wayland", .display = ":0", .waylandDisplay = "wayland-0"}));
    EXPECT_TRUE(isWaylandSession({.sessionType = "tty", .waylandDisplay = "wayland-0"}));
    // A compositor in a window of an X11 session.
    EXPECT_FALSE(
        isWaylandSession({.sessionType = "x11", .display = ":0", .waylandDisplay = "wayland-0"}));
}

TEST(WaylandSessions, WithoutACardAreNamed) {
    for (const char* desktop : {"KDE", "kde", "X:KDE", "Hyprland", "Wayfire:wlroots"})
        EXPECT_EQ(waylandProblem(desktop), std::nullopt) << desktop;
    EXPECT_EQ(waylandProblem("sway"),
              "no card can appear: sway shows nothing above its lock screen; use an X11 session, "
              "KDE Plasma, Hyprland or Wayfire");
    for (const auto& [desktop, name] : {std::pair{"COSMIC", "COSMIC"},
                                        {"niri", "niri"},
                                        {"labwc:wlroots", "labwc"},
                                        {"river", "river"},
                                        {"ubuntu:GNOME", "GNOME"},
                                        {"", "this Wayland compositor"},
                                        {"KDEX", "this Wayland compositor"}})
        EXPECT_TRUE(
            waylandProblem(desktop)->starts_with("no card can appear: " + std::string{name}))
            << *waylandProblem(desktop);
}

TEST(WaylandSessions, SayWhatTheUserMustDo) {
    EXPECT_EQ(waylandAdvice("KDE", ""), std::nullopt);
    EXPECT_TRUE(waylandAdvice("Wayfire", "")->ends_with("lock -- swaylock --ready-fd 3"));
    for (const auto& [version, words] :
         {std::pair{"Hyprland 0.48.1 built from branch main", "needs Hyprland 0.49 or newer"},
          {"Hyprland 0.52.0 built", ": layerrule = abovelock true, quorvane-card"},
          {"Hyprland 0.53.0 built", ": layerrule = above_lock 2, match:namespace quorvane-card"},
          {"Hyprland 0.55.2 built",
           R"(: hl.layer_rule({ match = { namespace = "quorvane-card" }, above_lock = 2 }))"},
          {"", ": hl.layer_rule("}})
        EXPECT_NE(waylandAdvice("Hyprland", version)->find(words), std::string::npos) << version;
}

// Measured on Plasma 5.27.
TEST(GreeterZones, HoldWhatPlasmaShows) {
    constexpr Rect kSmall{0, 0, 1280, 800};
    constexpr Rect kMiddle{0, 0, 1366, 768};
    constexpr Rect kLarge{0, 0, 1920, 1080};
    for (const auto& [output, unit, seen] :
         {std::tuple{kSmall, 18, Rect{427, 84, 424, 116}},  // clock and date
          {kSmall, 18, Rect{578, 266, 124, 124}},           // the user's picture
          {kSmall, 18, Rect{497, 463, 287, 34}},            // the prompt
          {kSmall, 18, Rect{10, 775, 125, 15}},             // the virtual keyboard
          {kMiddle, 20, Rect{411, 65, 542, 120}},           // with a Portuguese date
          {kMiddle, 20, Rect{544, 619, 293, 85}},           // sleep, hibernate, switch user
          {kMiddle, 28, Rect{459, 475, 447, 40}},           // the prompt in a large font
          {kLarge, 18, Rect{815, 643, 289, 56}}}) {         // the media controls
        bool isHeld = false;
        for (const Rect& zone : greeterZones(output, unit)) isHeld |= zone.covers(seen);
        EXPECT_TRUE(isHeld) << describe(seen);
    }
}

TEST(GreeterZones, GrowWithTheUsersFont) {
    for (const auto& [settings, unit] : {std::pair{"[General]\nfont=Noto Sans,14,-1,5,50", 28},
                                         {"[General]\nfont=Noto Sans,-1,19,5,50", 20},
                                         {"[General]\nfont=Noto Sans\n", 20},
                                         {"[WM]\nfont=Noto Sans,14", 20},
                                         {"", 20}})
        EXPECT_EQ(greeterUnit(settings), unit) << settings;
}

TEST(KdeSettings, TurnAnimationsOff) {
    EXPECT_EQ(kdeAnimates("[KDE]\nAnimationDurationFactor=0\n"), 0);
    EXPECT_EQ(kdeAnimates("[KDE]\nAnimationDurationFactor=0.5\n"), 1);
    EXPECT_EQ(kdeAnimates("[General]\nAnimationDurationFactor=0\n"), std::nullopt);
}

TEST(GreeterZones, HoldTheRingOfOtherLockScreens) {
    const std::vector<Rect> zones = greeterZones({100, 0, 1920, 1080}, std::nullopt);
    ASSERT_EQ(zones.size(), 1U);
    EXPECT_TRUE(zones[0].contains({1000, 480}) && zones[0].contains({1119, 599}));
}

TEST(GreeterZones, BelongToAScreenWhoseYGrowsUpward) {
    const Screen screen = screenOfOutput({1280, 100, 1000, 600}, 1.25, 20);
    EXPECT_EQ(screen.frame, (Rect{1280, -700, 1000, 600}));
    EXPECT_EQ(screen.scale, 1.25);
    EXPECT_EQ(screen.keepClear.back(), (Rect{1280, -700, 1000, 50})) << "the row at the bottom";
    EXPECT_EQ(placeOnOutput({1290, -700, 100.4, 50}, screen), (PixelRect{10, 550, 101, 50}));
}

}  // namespace
}  // namespace quorvane

// The lock as the desktop's services report it, from services on a private bus.
#include <gtest/gtest.h>

#include "platform/linux/bus/BusConnection.hpp"
#include "platform/linux/bus/LogindLinux.hpp"
#include "platform/linux/bus/MotionSetting.hpp"
#include "platform/linux/bus/ScreenSaverService.hpp"
#include "platform/linux/bus/ScreenSaverSignals.hpp"
#include "platform/linux/x11/ToolkitSettings.hpp"
#include "tests/support/FakeBusService.hpp"
#include "tests/support/LoopRunner.hpp"
#include "tests/support/PrivateBus.hpp"

namespace quorvane {
namespace {

constexpr char kGnome[] = "org.gnome.ScreenSaver";
constexpr char kGnomePath[] = "/org/gnome/ScreenSaver";
constexpr char kXfce[] = "org.xfce.ScreenSaver";
constexpr char kLogin[] = "org.freedesktop.login1";
constexpr char kSession[] = "org.freedesktop.login1.Session";
constexpr char kOwnSession[] = "/org/freedesktop/login1/session/_37";

class LockServices : public testing::Test {
protected:
    LockServices() {
        bus.useHere();
        setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().c_str(), 1);
        setenv("XDG_SESSION_ID", "7", 1);
    }

    bool waitFor(const std::function<bool()>& condition) { return runUntil(loop, condition); }
    // Always answers the questions of the lock.
    FakeBusService makeService(const char* name, bool isLocked) {
        return {
            loop, bus.address(), name,
            [isLocked](const std::string& member, sd_bus_message* call, sd_bus_message* answer) {
                const std::string_view path = sd_bus_message_get_path(call);
                if (member == "GetActive")
                    return sd_bus_message_append(answer, "b", isLocked ? 1 : 0) >= 0;
                return member == "Get" && path == kOwnSession &&
                       sd_bus_message_append(answer, "v", "b", isLocked ? 1 : 0) >= 0;
            }};
    }

    PrivateBus bus;
    EventLoop loop;
    SessionBus session{loop, {}};
    SystemBus system{loop, {}};
    int changes = 0;
    int wakes = 0;
    LogindLinux::Events events{[this] { ++changes; }, [this] { ++wakes; }};
};

TEST_F(LockServices, TellWhenAScreenSaverBecomesActive) {
    FakeBusService gnome = makeService(kGnome, false);
    FakeBusService xfce = makeService(kXfce, false);
    FakeBusService stranger = makeService("org.example.Stranger", false);
    ScreenSaverSignals savers{session, kScreenSaverServices, [this] { ++changes; }};
    // The queries follow the match rules: once they have arrived, signals arrive too.
    ASSERT_TRUE(waitFor([&] { return !gnome.calls().empty() && !xfce.calls().empty(); }));

    stranger.signal(kGnomePath, kGnome, "ActiveChanged", "b", 1);
    gnome.signal(kGnomePath, kGnome, "ActiveChanged", "s", "on");
    gnome.signal(kGnomePath, kGnome, "ActiveChanged", "b", 0);
    gnome.signal(kGnomePath, kGnome, "ActiveChanged", "b", 1);
    ASSERT_TRUE(waitFor([&] { return savers.isActive() == true; }));
    xfce.signal("/org/xfce/ScreenSaver", kXfce, "ActiveChanged", "b", 1);
    gnome.signal(kGnomePath, kGnome, "ActiveChanged", "b", 0);
    xfce.signal("/org/xfce/ScreenSaver", kXfce, "ActiveChanged", "b", 0);
    ASSERT_TRUE(waitFor([&] { return savers.isActive() == false; }));
    EXPECT_EQ(changes, 3)
        << "the answer, the first signal and the last one, none of the other client";
}

TEST_F(LockServices, FollowTheSessionsHint) {
    FakeBusService login = makeService(kLogin, true);
    LogindLinux logind{system, events};
    ASSERT_TRUE(waitFor([&] { return logind.isLocked(); }));
    EXPECT_EQ(changes, 1);

    const auto hint = [&](const char* path, const char* interface, const char* property,
                          int value) {
        login.signal(path, "org.freedesktop.DBus.Properties", "PropertiesChanged", "sa{sv}as",
                     interface, 1, property, "b", value, 0);
    };
    const auto sleep = [&](int isGoing) {
        login.signal("/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep",
                     "b", isGoing);
    };
    hint("/org/freedesktop/login1/session/_38", kSession, "LockedHint", 0);
    hint(kOwnSession, "org.example.Other", "LockedHint", 0);
    hint(kOwnSession, kSession, "IdleHint", 0);
    hint(kOwnSession, kSession, "LockedHint", 1);
    sleep(1);
    for (int wake = 0; wake < 2; ++wake) sleep(0);
    ASSERT_TRUE(waitFor([&] { return wakes > 1; }));
    EXPECT_EQ(wakes, 2) << "going to sleep is not a wake-up";
    EXPECT_EQ(changes, 1) << "none of these was about this session's hint";
    hint(kOwnSession, kSession, "LockedHint", 0);
    ASSERT_TRUE(waitFor([&] { return !logind.isLocked(); }));
    EXPECT_EQ(changes, 2);
}

// Their last values are dropped when they end, and later values are received.
TEST_F(LockServices, ComeBackAloneAndWithTheirBuses) {
    LogindLinux logind{system, events};
    ScreenSaverSignals savers{session, kScreenSaverServices, [this] { ++changes; }};
    const auto bothSay = [&](bool isLocked) {
        return waitFor([&, isLocked] {
            return logind.isLocked() == isLocked && savers.isActive().value_or(false) == isLocked;
        });
    };
    for (int round = 0; round < 3; ++round) {
        if (round == 2) bus.start();
        {
            const FakeBusService login = makeService(kLogin, true);
            const FakeBusService gnome = makeService(kGnome, true);
            ASSERT_TRUE(bothSay(true)) << round;
            if (round == 1) bus.kill();
        }
        ASSERT_TRUE(bothSay(false)) << round;
    }
    EXPECT_EQ(changes, 12);
}

// The add-on serves the lock's state, and the host receives it.
TEST_F(LockServices, TellWhatAnotherProcessSees) {
    ScreenSaverSignals seen{session, kAddOnServices, [] {}};
    const auto becomes = [&](std::optional<bool> state) {
        return waitFor([&] { return seen.isActive() == state; });
    };
    SessionBus busOfNext{loop, {}};
    ScreenSaverService next{busOfNext, kAddOnDetectorService};
    {
        SessionBus busOfOld{loop, {}};
        ScreenSaverService old{busOfOld, kAddOnDetectorService};
        old.keepServing();
        EXPECT_TRUE(becomes(false));
        next.keepServing();
        old.set(true);
        EXPECT_TRUE(becomes(true));
    }
    EXPECT_TRUE(becomes(false)) << "the next copy's";
    next.set(true);
    EXPECT_TRUE(becomes(true));
    bus.kill();
    EXPECT_TRUE(becomes(std::nullopt));
    bus.start();
    EXPECT_TRUE(becomes(true));
}

TEST_F(LockServices, ReadWhetherMotionIsReduced) {
    bool isReduced = true;
    FakeBusService portal{loop, bus.address(), "org.freedesktop.portal.Desktop",
                          [&](const std::string& member, sd_bus_message*, sd_bus_message* answer) {
                              return member == "ReadAll" &&
                                     sd_bus_message_append(
                                         answer, "a{sa{sv}}", 1, "org.gnome.desktop.interface", 1,
                                         "enable-animations", "b", isReduced ? 0 : 1) >= 0;
                          }};
    MotionSetting motion{session, [] { return 1; }};
    EXPECT_FALSE(motion.isReduced());
    motion.refresh();
    ASSERT_TRUE(waitFor([&] { return motion.isReduced(); }));
    isReduced = false;
    motion.refresh();
    EXPECT_TRUE(motion.isReduced()) << "the known value holds until the answer arrives";
    ASSERT_TRUE(waitFor([&] { return !motion.isReduced(); }));

    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
    SessionBus none{loop, {}};
    MotionSetting ofToolkits{none, [] { return 0; }};
    ofToolkits.refresh();
    EXPECT_TRUE(ofToolkits.isReduced()) << "without a bus the toolkits' switch decides";
}

TEST(MotionSettings, AreUnderstoodInBothForms) {
    const auto settings = [](const char* group, const char* name, PropertyValue value) {
        return PropertyDictionary{{group, {PropertyDictionary{{name, std::move(value)}}}}};
    };
    const auto common = [&](std::int64_t value) {
        return settings("org.freedesktop.appearance", "reduced-motion", {value});
    };
    constexpr char kDesktop[] = "org.gnome.desktop.interface";
    EXPECT_EQ(reducesMotion(common(1)), true);
    EXPECT_EQ(reducesMotion(settings(kDesktop, "enable-animations", {std::int64_t{0}})),
              std::nullopt);
    auto both = common(0);
    both.merge(settings(kDesktop, "enable-animations", {false}));
    EXPECT_EQ(reducesMotion(both), false) << "the common setting is the newer one";
}

TEST(ToolkitSettings, AreReadInBothByteOrders) {
    using namespace std::string_view_literals;
    constexpr auto kLittle =
        "\0\0\0\0\7\0\0\0\3\0\0\0"
        "\1\0\5\0Theme\0\0\0\1\0\0\0\2\0\0\0No\0\0"
        "\2\0\4\0Tint\1\0\0\0\1\1\2\2\3\3\4\4"
        "\0\0\7\0Animate\0\1\0\0\0\377\377\377\377"sv;
    constexpr auto kBig = "\1\0\0\0\0\0\0\7\0\0\0\1\0\0\0\7Animate\0\0\0\0\1\0\0\1\0"sv;
    EXPECT_EQ(numberIn(kLittle, "Animate"), -1);
    EXPECT_EQ(numberIn(kBig, "Animate"), 256);
    EXPECT_EQ(numberIn(kLittle, "Theme"), std::nullopt);
    for (std::size_t length = 0; length < kLittle.size(); ++length)
        EXPECT_EQ(numberIn(kLittle.substr(0, length), "Animate"), std::nullopt) << length;
}

}  // namespace
}  // namespace quorvane

// What the desktop's services say of the lock, from services that stand on a private bus.
#include <gtest/gtest.h>

#include <optional>

#include "platform/linux/bus/BusConnection.hpp"
#include "platform/linux/bus/LogindLinux.hpp"
#include "platform/linux/bus/MotionSetting.hpp"
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
constexpr char kXfcePath[] = "/org/xfce/ScreenSaver";
constexpr char kLogin[] = "org.freedesktop.login1";
constexpr char kLoginPath[] = "/org/freedesktop/login1";
constexpr char kManager[] = "org.freedesktop.login1.Manager";
constexpr char kSession[] = "org.freedesktop.login1.Session";
constexpr char kProperties[] = "org.freedesktop.DBus.Properties";
constexpr char kOwnSession[] = "/org/freedesktop/login1/session/_37";
constexpr char kOtherSession[] = "/org/freedesktop/login1/session/_38";

class LockServices : public testing::Test {
protected:
    LockServices() {
        bus.useHere();
        setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().c_str(), 1);
        setenv("XDG_SESSION_ID", "7", 1);
    }
    void SetUp() override { ASSERT_NE(bus.address(), "") << "the bus did not come up"; }

    bool waitFor(const std::function<bool()>& condition) { return runUntil(loop, condition); }
    static FakeBusService::Handler answering(bool isActive) {
        return [isActive](const std::string& member, sd_bus_message*, sd_bus_message* answer) {
            return member == "GetActive" &&
                   sd_bus_message_append(answer, "b", isActive ? 1 : 0) >= 0;
        };
    }
    static FakeBusService::Handler hinting(bool isLocked) {
        return [isLocked](const std::string& member, sd_bus_message* call, sd_bus_message* answer) {
            const char* interface = nullptr;
            const char* property = nullptr;
            return member == "Get" &&
                   std::string_view{sd_bus_message_get_path(call)} == kOwnSession &&
                   sd_bus_message_read(call, "ss", &interface, &property) >= 0 &&
                   std::string_view{property} == "LockedHint" &&
                   sd_bus_message_append(answer, "v", "b", isLocked ? 1 : 0) >= 0;
        };
    }

    PrivateBus bus;
    EventLoop loop;
    SessionBus session{loop, {}};
    SystemBus system{loop, {}};
    int changes = 0;
};

TEST_F(LockServices, TellWhenAScreenSaverBecomesActive) {
    FakeBusService gnome{loop, bus.address(), kGnome, answering(false)};
    FakeBusService xfce{loop, bus.address(), kXfce, answering(false)};
    ASSERT_TRUE(gnome.isUp() && xfce.isUp());
    ScreenSaverSignals savers{session, [this] { ++changes; }};
    // The questions come behind the match rules: once they are here, signals are heard.
    ASSERT_TRUE(waitFor([&] { return !gnome.calls().empty() && !xfce.calls().empty(); }));

    gnome.signal(kGnomePath, kGnome, "ActiveChanged", "b", 1);
    ASSERT_TRUE(waitFor([&] { return changes == 1; }));
    EXPECT_TRUE(savers.isActive());
    xfce.signal(kXfcePath, kXfce, "ActiveChanged", "b", 1);
    gnome.signal(kGnomePath, kGnome, "ActiveChanged", "b", 0);
    xfce.signal(kXfcePath, kXfce, "ActiveChanged", "b", 0);
    ASSERT_TRUE(waitFor([&] { return !savers.isActive(); }));
    EXPECT_EQ(changes, 2) << "the first one and the last one";
}

TEST_F(LockServices, BelieveOnlyTheOwnersOfTheirNames) {
    FakeBusService gnome{loop, bus.address(), kGnome, answering(false)};
    FakeBusService stranger{loop, bus.address(), "org.example.Stranger", nullptr};
    ScreenSaverSignals savers{session, [this] { ++changes; }};
    ASSERT_TRUE(waitFor([&] { return !gnome.calls().empty(); }));
    bool isThrough = false;
    const Handle last =
        session.match("type='signal',member='Last'", [&](sd_bus_message*) { isThrough = true; });
    stranger.signal(kGnomePath, kGnome, "ActiveChanged", "b", 1);
    gnome.signal(kGnomePath, kGnome, "ActiveChanged", "s", "on");
    stranger.signal(kGnomePath, kGnome, "Last", "");
    ASSERT_TRUE(waitFor([&] { return isThrough; }));
    EXPECT_EQ(changes, 0);
    EXPECT_FALSE(savers.isActive());
}

TEST_F(LockServices, FollowTheSessionsHint) {
    FakeBusService login{loop, bus.address(), kLogin, hinting(true)};
    int wakes = 0;
    LogindLinux logind{system, {[this] { ++changes; }, [&] { ++wakes; }}};
    ASSERT_TRUE(waitFor([&] { return logind.isLocked(); }));
    EXPECT_EQ(changes, 1);

    const auto hint = [&](const char* path, const char* interface, const char* property,
                          int value) {
        login.signal(path, kProperties, "PropertiesChanged", "sa{sv}as", interface, 1, property,
                     "b", value, 0);
    };
    hint(kOtherSession, kSession, "LockedHint", 0);
    hint(kOwnSession, "org.example.Other", "LockedHint", 0);
    hint(kOwnSession, kSession, "IdleHint", 0);
    hint(kOwnSession, kSession, "LockedHint", 1);
    // Going to sleep is no wake.
    login.signal(kLoginPath, kManager, "PrepareForSleep", "b", 1);
    login.signal(kLoginPath, kManager, "PrepareForSleep", "b", 0);
    ASSERT_TRUE(waitFor([&] { return wakes > 0; }));
    EXPECT_EQ(wakes, 1);
    EXPECT_EQ(changes, 1) << "none of these was about this session's hint";
    hint(kOwnSession, kSession, "LockedHint", 0);
    ASSERT_TRUE(waitFor([&] { return !logind.isLocked(); }));
    EXPECT_EQ(changes, 2);
}

// What they said before does not stay, and what they say afterwards is heard.
TEST_F(LockServices, ComeBackAloneAndWithTheirBuses) {
    std::optional<FakeBusService> login;
    std::optional<FakeBusService> gnome;
    int wakes = 0;
    LogindLinux logind{system, {[this] { ++changes; }, [&] { ++wakes; }}};
    ScreenSaverSignals savers{session, [this] { ++changes; }};
    const auto bothSay = [&](bool isLocked) {
        return waitFor([&, isLocked] {
            return logind.isLocked() == isLocked && savers.isActive() == isLocked;
        });
    };
    const auto start = [&] {
        login.emplace(loop, bus.address(), kLogin, hinting(true));
        gnome.emplace(loop, bus.address(), kGnome, answering(true));
    };
    start();
    ASSERT_TRUE(bothSay(true));
    login.reset();
    gnome.reset();
    ASSERT_TRUE(bothSay(false));
    start();
    ASSERT_TRUE(bothSay(true));
    bus.kill();
    ASSERT_TRUE(bothSay(false));
    bus.start();
    start();
    ASSERT_TRUE(bothSay(true));
    login->signal(kLoginPath, kManager, "PrepareForSleep", "b", 0);
    ASSERT_TRUE(waitFor([&] { return wakes == 1; }));
    EXPECT_EQ(changes, 10);
}

TEST_F(LockServices, AreNotMissedWhereThereAreNone) {
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent", 1);
    {
        SessionBus none{loop, {}};
        SystemBus noSystem{loop, {}};
        ScreenSaverSignals savers{none, [this] { ++changes; }};
        LogindLinux logind{noSystem, {[this] { ++changes; }, [] {}}};
        MotionSetting motion{none, [] { return 0; }};
        motion.refresh();
        runOnce(loop);
        EXPECT_FALSE(savers.isActive() || logind.isLocked());
        EXPECT_TRUE(motion.isReduced()) << "without a bus the toolkits' switch decides";
    }
    // A bus without any of the services; the questions end in errors.
    bus.useHere();
    setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().c_str(), 1);
    unsetenv("XDG_SESSION_ID");
    ScreenSaverSignals savers{session, [this] { ++changes; }};
    LogindLinux logind{system, {[this] { ++changes; }, [] {}}};
    FakeBusService marker{loop, bus.address(), kXfce, answering(true)};
    ASSERT_TRUE(waitFor([&] { return savers.isActive(); }));
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(logind.isLocked());
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
    EXPECT_TRUE(motion.isReduced()) << "what was known serves until the answer is here";
    ASSERT_TRUE(waitFor([&] { return !motion.isReduced(); }));
}

TEST(MotionSettings, AreUnderstoodInBothForms) {
    const auto settings = [](const char* group, const char* name, PropertyValue value) {
        return PropertyDictionary{{group, {PropertyDictionary{{name, std::move(value)}}}}};
    };
    constexpr char kCommon[] = "org.freedesktop.appearance";
    constexpr char kGnomes[] = "org.gnome.desktop.interface";
    constexpr std::optional<bool> kUnknown;
    EXPECT_EQ(reducesMotion(settings(kCommon, "reduced-motion", {std::int64_t{1}})), true);
    EXPECT_EQ(reducesMotion(settings(kCommon, "color-scheme", {std::int64_t{1}})), kUnknown);
    EXPECT_EQ(reducesMotion(settings(kGnomes, "enable-animations", {std::int64_t{0}})), kUnknown);
    EXPECT_EQ(reducesMotion({}), kUnknown);
    auto both = settings(kCommon, "reduced-motion", {std::int64_t{0}});
    both.merge(settings(kGnomes, "enable-animations", {false}));
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
    EXPECT_EQ(numberIn(bytesOf(kLittle), "Animate"), -1);
    EXPECT_EQ(numberIn(bytesOf(kBig), "Animate"), 256);
    EXPECT_EQ(numberIn(bytesOf(kLittle), "Theme"), std::nullopt);
    for (std::size_t length = 0; length < kLittle.size(); ++length)
        EXPECT_EQ(numberIn(bytesOf(kLittle.substr(0, length)), "Animate"), std::nullopt) << length;
}

}  // namespace
}  // namespace quorvane

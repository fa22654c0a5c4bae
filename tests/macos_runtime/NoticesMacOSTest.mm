// Notices of every kind, in and out.
#include "platform/macos/card/CardMacOS.hpp"
#include "platform/macos/services/ServicesMacOS.hpp"
#include "tests/macos_runtime/MacTest.hpp"
#include "tests/macos_runtime/fakes/AppKitFakes.hpp"
#include "tests/macos_runtime/fakes/SystemFakes.hpp"

namespace quorvane {
namespace {

using macrt::setAnswer;
using NoticesMacOSTest = macrt::MacTest;

TEST_F(NoticesMacOSTest, DistributedOnesComeInWithTheirUserInfo) {
    std::vector<PropertyDictionary> got;
    Handle handle;
    @autoreleasepool {
        const DistributedNotices notices = makeDistributedNoticesMacOS();
        handle = notices.observe("a.status", [&](const PropertyDictionary& info) {
            handle.reset();  // what hears may stop hearing, and goes on
            got.push_back(info);
        });
        macrt::deliverDistributed(@"a.other");
        macrt::deliverDistributed(
            @"a.status", @{
                @"connected" : @YES,
                @"count" : @7LL,
                @"share" : @0.5,
                @"version" : @"1.0",
                @"strange" : [NSObject new]
            });
        macrt::deliverDistributed(@"a.status");
    }
    EXPECT_EQ(got, (std::vector<PropertyDictionary>{{{"connected", {true}},
                                                     {"count", {std::int64_t{7}}},
                                                     {"share", {0.5}},
                                                     {"version", {std::string{"1.0"}}}}}));
    EXPECT_EQ(macrt::livingObjects().find("QuorvaneNoticeObserver"), std::string::npos);
}

TEST_F(NoticesMacOSTest, DistributedOnesGoOutAtOnce) {
    makeDistributedNoticesMacOS().post("a.status",
                                       {{"connected", {false}}, {"version", {std::string{"1.0"}}}});
}

TEST_F(NoticesMacOSTest, DarwinOnesAreNamesAlone) {
    int heard = 0;
    const DarwinNotices notices = makeDarwinNoticesMacOS();
    Handle handle;
    handle = notices.observe("a.changed", [&] {
        handle.reset();
        ++heard;
    });
    notices.post("a.changed");
    EXPECT_EQ(heard, 0);  // the system delivers it later
    macrt::deliverDarwin("a.other");
    macrt::deliverDarwin("a.changed");
    macrt::deliverDarwin("a.changed");
    EXPECT_EQ(heard, 1);
}

TEST_F(NoticesMacOSTest, TheWorkspaceTellsOfWakingOnItsOwnCentre) {
    int woken = 0;
    @autoreleasepool {
        const LockSources sources = makeLockSourcesMacOS();
        const Handle handle = sources.observeWake([&] { ++woken; });
        macrt::deliver(NSNotificationCenter.defaultCenter, NSWorkspaceDidWakeNotification);
        EXPECT_EQ(woken, 0);
        macrt::deliver(NSWorkspace.sharedWorkspace.notificationCenter,
                       NSWorkspaceDidWakeNotification);
        EXPECT_EQ(woken, 1);
    }
    macrt::deliver(NSWorkspace.sharedWorkspace.notificationCenter, NSWorkspaceDidWakeNotification);
    EXPECT_EQ(woken, 1);
    drainPool();
    EXPECT_EQ(macrt::livingObjects().find("block"), std::string::npos);
}

TEST_F(NoticesMacOSTest, ScreensAreListedAndTheirChangesTold) {
    const Screens screens = makeScreensMacOS();
    EXPECT_EQ(screens.list(), std::vector<Screen>{});
    macrt::setScreens({{{{0, 0}, {1512, 982}}, 2}, {{{-1920, 100}, {1920, 1080}}, 1}});
    EXPECT_EQ(screens.list(), (std::vector<Screen>{{.frame = {0, 0, 1512, 982}, .scale = 2},
                                                   {.frame = {-1920, 100, 1920, 1080}}}));
    int changes = 0;
    Handle handle = screens.observeChanges([&] { ++changes; });
    macrt::deliver(NSNotificationCenter.defaultCenter,
                   NSApplicationDidChangeScreenParametersNotification);
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(screens.observeKeepClear([] {}));
}

TEST_F(NoticesMacOSTest, TheLockIsReadFromTheSession) {
    const LockSources sources = makeLockSourcesMacOS();
    setAnswer("CGSessionCopyCurrentDictionary", nil);
    EXPECT_FALSE(sources.sessionDictionary());
    setAnswer(
        "CGSessionCopyCurrentDictionary",
        @{@"CGSSessionScreenIsLocked" : @YES});
    const auto session = sources.sessionDictionary();
    ASSERT_TRUE(session && session->as<PropertyDictionary>());
    EXPECT_TRUE(*find<bool>(*session->as<PropertyDictionary>(), "CGSSessionScreenIsLocked"));
    setAnswer("notify state", 5);
    setAnswer("notify_get_state", 2);
    setAnswer("notify_register_check", 9);
    int token = 0;
    std::uint64_t state = 0;
    EXPECT_EQ(sources.notifyRegisterCheck("a.showing", token), 9u);
    EXPECT_EQ(sources.notifyGetState(token, state), 2u);
    EXPECT_EQ(state, 5u);
    sources.notifyCancel(token);
}

}  // namespace
}  // namespace quorvane

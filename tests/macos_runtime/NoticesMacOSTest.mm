// Notices of every kind, in and out.
#include "platform/macos/DarwinNoticesMacOS.hpp"
#include "platform/macos/DistributedNoticesMacOS.hpp"
#include "platform/macos/LockSourcesMacOS.hpp"
#include "platform/macos/ScreensMacOS.hpp"
#include "tests/macos_runtime/MacTest.hpp"
#include "tests/macos_runtime/fakes/AppKitFakes.hpp"
#include "tests/macos_runtime/fakes/NoticeFakes.hpp"
#include "tests/macos_runtime/fakes/SystemFakes.hpp"

namespace quorvane {
namespace {

using macrt::takeTexts;
using macrt::Texts;
using NoticesMacOSTest = macrt::MacTest;

TEST_F(NoticesMacOSTest, DistributedOnesComeInWithTheirUserInfo) {
    std::vector<PropertyDictionary> got;
    Handle handle;
    @autoreleasepool {
        const DistributedNotices notices = makeDistributedNoticesMacOS();
        handle = notices.observe("a.status", [&](const PropertyDictionary& info) {
            got.push_back(info);
            handle.reset();  // what hears may stop hearing
        });
        EXPECT_EQ(
            takeTexts("-["),
            Texts{"-[NSDistributedNotificationCenter#1 addObserver:<QuorvaneNoticeObserver#1> "
                  "selector:received: name:@\"a.status\" object:nil suspensionBehavior:4]"});
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
    EXPECT_EQ(takeTexts("-["), Texts{"-[NSDistributedNotificationCenter#1 "
                                     "removeObserver:<QuorvaneNoticeObserver#1>]"});
    EXPECT_EQ(macrt::livingObjects(), "1 NSDistributedNotificationCenter");
}

TEST_F(NoticesMacOSTest, DistributedOnesGoOutAtOnce) {
    makeDistributedNoticesMacOS().post("a.status",
                                       {{"connected", {false}}, {"version", {std::string{"1.0"}}}});
    EXPECT_EQ(takeTexts("-["),
              Texts{"-[NSDistributedNotificationCenter#1 postNotificationName:@\"a.status\" "
                    "object:nil userInfo:{@\"connected\": NO, @\"version\": @\"1.0\"} "
                    "deliverImmediately:YES]"});
}

TEST_F(NoticesMacOSTest, DarwinOnesAreNamesAlone) {
    int heard = 0;
    const DarwinNotices notices = makeDarwinNoticesMacOS();
    Handle handle;
    handle = notices.observe("a.changed", [&] {
        ++heard;
        handle.reset();
    });
    notices.post("a.changed");
    EXPECT_EQ(heard, 0);  // the system delivers it later
    macrt::deliverDarwin("a.other");
    macrt::deliverDarwin("a.changed");
    macrt::deliverDarwin("a.changed");
    EXPECT_EQ(heard, 1);
    EXPECT_EQ(takeTexts(), (Texts{"Darwin observe a.changed 4", "Darwin post a.changed",
                                  "Darwin remove a.changed"}));
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
    EXPECT_EQ(takeTexts("removeObserver").size(), 1u);
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
    EXPECT_EQ(takeTexts("addObserver"),
              Texts{"-[NSNotificationCenter#1 "
                    "addObserverForName:@\"NSApplicationDidChangeScreenParametersNotification\" "
                    "object:nil queue:<NSOperationQueue#1> usingBlock:<block>]"});
    EXPECT_TRUE(screens.observeKeepClear([] {}));
}

TEST_F(NoticesMacOSTest, TheLockIsReadFromTheSession) {
    const LockSources sources = makeLockSourcesMacOS();
    EXPECT_FALSE(sources.sessionDictionary());
    macrt::answers().session = @{@"CGSSessionScreenIsLocked" : @YES};
    const auto session = sources.sessionDictionary();
    ASSERT_TRUE(session && session->as<PropertyDictionary>());
    EXPECT_TRUE(*find<bool>(*session->as<PropertyDictionary>(), "CGSSessionScreenIsLocked"));
    macrt::answers().notifyStates["a.showing"] = 5;
    int token = 0;
    std::uint64_t state = 0;
    EXPECT_EQ(sources.notifyRegisterCheck("a.showing", token), 0u);
    EXPECT_EQ(sources.notifyGetState(token, state), 0u);
    EXPECT_EQ(state, 5u);
    sources.notifyCancel(token);
    EXPECT_EQ(sources.notifyGetState(token, state), 2u);
    macrt::answers().notifyStatus = 9;
    EXPECT_EQ(sources.notifyRegisterCheck("a.showing", token), 9u);
    EXPECT_EQ(takeTexts(),
              (Texts{"notify register a.showing", "notify cancel 1", "notify register a.showing"}));
}

}  // namespace
}  // namespace quorvane

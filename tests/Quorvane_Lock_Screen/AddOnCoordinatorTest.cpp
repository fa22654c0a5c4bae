#include "Quorvane_Lock_Screen/AddOnCoordinator.hpp"

#include <gtest/gtest.h>

#include "shared/AddOnSignals.hpp"
#include "tests/support/FakePlatform.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using ID = SceneControl::ID;
using Kind = PointerEvent::Kind;

constexpr char kCleared[] =
    "state: Quorvane unreachable; cleared (Quorvane unreachable or quit), card hidden";
constexpr char kConfigurationChanged[] = "example.quillon.Quorvane.lockScreenConfigurationChanged";
constexpr char kMainAppQuits[] = "example.quillon.Quorvane.mainAppWillTerminate";

class AddOnCoordinatorTest : public testing::Test {
protected:
    void start() {
        coordinator->start();
        platform.settle();
    }
    void lockAndShow() {
        start();
        platform.lock();
        platform.pass(800ms);
        ASSERT_TRUE(platform.isCardSeen());
        platform.log.take();
    }
    long count(const std::string& text) {
        return std::ranges::count(platform.log.lines(), text, &RecordingLog::Line::text);
    }

    FakePlatform platform;
    std::shared_ptr<AddOnCoordinator> coordinator = AddOnCoordinator::make(platform.live);
};

TEST_F(AddOnCoordinatorTest, StartsInItsStatedOrder) {
    start();
    EXPECT_EQ(platform.log.take(),
              (Lines{"launch: 1.2.3, pid 4711", "Starting message port client",
                     "Connected to message port",
                     "State received - track: none -> Reed, position: 0.000000s",
                     "state: track changed, playing, card visible, artwork 13 B, heart shown",
                     "state: now 'Reed' — 'Marsh'",
                     "link: add-on 1.2.3, macOS 26.1.0, supported true, install 0F0E0D0C",
                     "installer: connected true; posting the status",
                     "state: locked false, lockui false, delay false, allowed false, music true → "
                     "windows false, card false",
                     "lock monitor started; locked now false", "lockui: shared state 0",
                     "Configuration: enabled true, removal false, minimum 1.0.0",
                     "state: locked false, lockui false, delay false, allowed true, music true → "
                     "windows false, card false"}));
}

TEST_F(AddOnCoordinatorTest, FollowsOneLockFromItsNoticeToTheUnlock) {
    start();
    platform.log.take();
    platform.lock();
    EXPECT_TRUE(platform.windows.open().empty());
    platform.pass(800ms);
    EXPECT_TRUE(platform.isCardSeen());
    EXPECT_EQ(platform.activities, 1);
    EXPECT_EQ(platform.log.take(),
              (Lines{"lock: com.apple.screenIsLocked",
                     "state: locked true, lockui false, delay false, allowed true, music true → "
                     "windows false, card false",
                     "lockui: shown",
                     "state: locked true, lockui true, delay false, allowed true, music true → "
                     "windows false, card false",
                     "state: locked true, lockui true, delay true, allowed true, music true → "
                     "windows true, card true",
                     "windows: building 1 (state), card true",
                     "window 101 on screen 1 {{0, 0}, {1920, 1080}} at {{708, 482}, {504, 326}}",
                     "State received - track: Reed -> Reed, position: 0.000000s",
                     "entrance: window 101, reduce motion false"}));
    platform.tap(ID::next);
    platform.mainApp.play("Rush", "Sedge");
    EXPECT_EQ(platform.mainApp.commands, Lines{"nextTrack"});
    platform.pass(790ms);
    EXPECT_EQ(platform.log.take(), Lines{"command: nextTrack"});
    platform.pass(10ms);
    EXPECT_EQ(platform.log.take(),
              (Lines{"State received - track: Reed -> Rush, position: 0.000000s",
                     "state: track changed, artwork 13 B", "state: now 'Rush' — 'Sedge'"}));
    platform.unlock();
    EXPECT_EQ(platform.log.take(),
              (Lines{"lockui: hidden",
                     "state: locked true, lockui false, delay false, allowed true, music true → "
                     "windows false, card false",
                     "windows: closing 1 (state)", "unlock: com.apple.screenIsUnlocked",
                     "state: locked false, lockui false, delay false, allowed true, music true → "
                     "windows false, card false"}));
    EXPECT_TRUE(platform.windows.open().empty());
    EXPECT_EQ(platform.activities, 0);
    const int requests = platform.mainApp.stateRequests;
    platform.pass(10s);
    EXPECT_EQ(platform.mainApp.stateRequests, requests);
    EXPECT_EQ(platform.mainApp.strangers, 0);
}

TEST_F(AddOnCoordinatorTest, AScreenThatIsLockedAtTheStartNeedsNoLockNotice) {
    platform.isLocked = true;
    start();
    platform.notice("com.apple.screenLockUIIsShown");
    platform.pass(800ms);
    EXPECT_TRUE(platform.isCardSeen());
    EXPECT_EQ(platform.mainApp.hellos.size(), 2u);  // the link's own and that of the lock
    EXPECT_EQ(platform.mainApp.hellos[0].installID, "0F0E0D0C");
}

TEST_F(AddOnCoordinatorTest, ARemovalClosesTheWindowsAtOnceAndForGood) {
    lockAndShow();
    const auto stage = platform.stage();
    const auto area = *platform.frame(ID::volume);
    platform.pointer(Kind::down, {area.x, area.midY()});
    platform.log.take();
    platform.mainApp.configuration.removalRequested = true;
    platform.notice(kConfigurationChanged);
    EXPECT_TRUE(platform.windows.open().empty());
    EXPECT_EQ(platform.activities, 0);
    EXPECT_EQ(platform.mainApp.commands, Lines{"volume 0"});  // the drag's end sends none
    EXPECT_EQ(platform.log.lines().back().text, "Stopping message port client");
    const Lines lines = platform.log.take();
    EXPECT_EQ(Lines(lines.begin() + 1, lines.begin() + 5),
              (Lines{"Configuration: enabled true, removal true, minimum 1.0.0",
                     "Quorvane asked for removal; no more hellos", "removal: closing the windows",
                     "windows: closing 1 (state)"}));

    const std::size_t sent = platform.ports.sent.size();
    if (stage->events.pointer) stage->events.pointer({Kind::up, {area.midX(), area.midY()}});
    EXPECT_EQ(platform.notice(AddOnSignals::kStatusRequest), 0);
    EXPECT_EQ(platform.notice(AddOnSignals::kQuit), 0);
    EXPECT_EQ(platform.notice(kStateChanged), 0);
    platform.mainApp.configuration.removalRequested = false;
    platform.notice(kConfigurationChanged);
    platform.notice(kMainAppQuits);
    platform.unlock();
    platform.lock();
    platform.pass(100s);
    EXPECT_EQ(platform.ports.sent.size(), sent);
    EXPECT_EQ(platform.windows.windows.size(), 1u);
    EXPECT_EQ(platform.terminations, 0);
    coordinator->willTerminate();
    EXPECT_EQ(count("removal: closing the windows"), 0);
}

// The removal arrives while a refresh waits for a new connection, and stops the client.
TEST_F(AddOnCoordinatorTest, ARemovalInsideAWaitingSendIsNotUndoneByIt) {
    lockAndShow();
    platform.ports.failures[std::string{kMessagePortBaseName}] = kPortBecameInvalid;
    platform.pass(2s);  // the poll that finds the port dead
    platform.ports.failures.clear();
    platform.mainApp.configuration.removalRequested = true;
    platform.notices.deliver(kConfigurationChanged);  // the hello waits in its queue
    platform.ports.duringSend = [&] {
        platform.ports.duringSend = nullptr;
        platform.settle();
    };
    platform.clock.advance(2s);
    EXPECT_EQ(count("removal: closing the windows"), 1);
    EXPECT_EQ(platform.notice(kStateChanged), 0);
    EXPECT_EQ(platform.notices.posted.back().first, AddOnSignals::kStatus);
    const std::size_t sent = platform.ports.sent.size();
    platform.pass(10s);
    EXPECT_EQ(platform.ports.sent.size(), sent);
}

TEST_F(AddOnCoordinatorTest, MemoryForPollsIsFreedWithTheCard) {
    lockAndShow();
    platform.pass(4s);
    EXPECT_GT(platform.ports.sent.back().replyMemory, 0u);
    platform.unlock();
    EXPECT_GT(platform.notice(kStateChanged), 0);
    EXPECT_EQ(platform.ports.sent.back().replyMemory, 0u);
}

TEST_F(AddOnCoordinatorTest, TheMainApplicationsQuitHidesTheCardUntilItPlaysAgain) {
    lockAndShow();
    const std::size_t scenes = platform.stage()->scenes.size();
    platform.notice(kMainAppQuits);
    platform.clock.advance(100ms);
    EXPECT_EQ(platform.stage()->scenes.size(), scenes) << "the fade shows the card as it was";
    EXPECT_FALSE(platform.isCardSeen());
    EXPECT_EQ(platform.windows.open().size(), 1u);
    EXPECT_EQ(count(kCleared), 1);
    const Lines lines = platform.log.take();
    EXPECT_EQ(lines.front(), "notice: mainAppWillTerminate; hiding the card");
    EXPECT_EQ(lines.back(),
              "state: locked true, lockui true, delay true, allowed true, music false");
    platform.mainApp.quit();
    platform.pass(10s);
    EXPECT_FALSE(platform.isCardSeen());
    EXPECT_EQ(count(kCleared),
              0);  // the quit has cleared it already

    platform.mainApp.launch();
    platform.notice(kStateChanged);
    EXPECT_TRUE(platform.isCardSeen());
    EXPECT_EQ(platform.windows.windows.size(), 1u);

    platform.mainApp.quit();  // without a notice
    platform.pass(10s);
    EXPECT_FALSE(platform.isCardSeen());
    EXPECT_EQ(count(kCleared), 1);
}

// The state that a new connection brings is older than the user's edit.
TEST_F(AddOnCoordinatorTest, AnEditOutlastsTheStateOfAConnectionThatItNeeds) {
    const auto playPauseLabel = [&] {
        platform.clock.advance(Duration{});
        const auto& controls = platform.stage()->scenes.back().controls;
        return std::ranges::find(controls, ID::playPause, &SceneControl::id)->label;
    };
    const auto disconnect = [&] {
        platform.ports.failures[std::string{kMessagePortBaseName}] = kPortSendTimeout;
        platform.notice(kStateChanged);
        platform.ports.failures.clear();
    };
    lockAndShow();
    disconnect();
    EXPECT_EQ(playPauseLabel(), "Pause");
    platform.tap(ID::playPause);
    EXPECT_EQ(playPauseLabel(), "Play");
    platform.pass(1s);

    disconnect();
    const auto area = *platform.frame(ID::volume);
    platform.ports.duringSend = [&] {
        platform.ports.duringSend = nullptr;
        platform.pointer(Kind::dragged, {area.x + area.width * 0.755, area.midY()});
        platform.clock.advance(100ms);  // the newer volume is sent inside the older one's wait
    };
    platform.pointer(Kind::down, {area.x + area.width * 0.255, area.midY()});
    EXPECT_EQ(platform.mainApp.commands, (Lines{"playPause", "volume 75"}));
}

TEST_F(AddOnCoordinatorTest, ATapAtTheVolumeThatIsShownSendsNoOlderOne) {
    lockAndShow();
    platform.stage()->events.accessibility(ID::volume, AccessibilityAction::increment);
    platform.pass(1s);
    platform.mainApp.state.volume = 80;
    platform.notice(kStateChanged);
    const auto area = *platform.frame(ID::volume);
    const Point shown{area.x + area.width * 0.805, area.midY()};
    platform.pointer(Kind::down, shown);
    platform.pointer(Kind::up, shown);
    EXPECT_EQ(platform.mainApp.commands, Lines{"volume 55"});
}

TEST_F(AddOnCoordinatorTest, ABundleWithoutAVersionHasADashForOne) {
    platform.live.services.process.bundleProperties.clear();
    start();
    platform.notice(AddOnSignals::kStatusRequest);
    EXPECT_EQ(count("launch: -, pid 4711"), 1);
    EXPECT_EQ(count("link: add-on -, macOS 26.1.0, supported true, install 0F0E0D0C"), 1);
    const auto& [name, userInfo] = platform.notices.posted.back();
    EXPECT_EQ(AddOnSignals::Status::fromUserInfo(userInfo),
              (AddOnSignals::Status{.isConnected = true, .version = "-"}));
    EXPECT_EQ(platform.mainApp.hellos.at(0).addOnVersion, "0");
}

// The end of a drag sends a volume and waits for a new connection. Events that arrive during the
// wait decide about the windows.
TEST_F(AddOnCoordinatorTest, EventsDuringADragsEndDecideAboutTheWindows) {
    enum class Within { unlock, screensChange, unlockUnderPress };
    for (const Within within : {Within::unlock, Within::screensChange, Within::unlockUnderPress}) {
        lockAndShow();
        const auto area = *platform.frame(ID::volume);
        const Point quarter{area.x + area.width / 4, area.midY()};
        platform.pointer(Kind::down, quarter);
        platform.ports.failures[std::string{kMessagePortBaseName}] = kPortSendTimeout;
        platform.notice(kStateChanged);  // disconnects
        platform.ports.failures.clear();
        platform.ports.duringSend = [&] {
            if (within == Within::screensChange)
                platform.screens.changed();
            else
                platform.unlock();
        };
        if (within == Within::unlockUnderPress)
            platform.pointer(Kind::down, quarter);
        else
            platform.screens.changed();
        EXPECT_FALSE(platform.ports.duringSend);
        platform.settle();
        EXPECT_EQ(platform.windows.open().size(), within == Within::screensChange ? 1u : 0u);
        platform.unlock();
        EXPECT_TRUE(platform.windows.open().empty());
        EXPECT_EQ(platform.activities, 0);
        coordinator = AddOnCoordinator::make(platform.live);
    }
}

TEST_F(AddOnCoordinatorTest, NothingHappensAfterItsDestruction) {
    lockAndShow();
    platform.notices.deliver(kConfigurationChanged);       // a query waits in its queue
    platform.notices.deliver("com.apple.screenIsLocked");  // a hello waits for the main thread
    platform.tap(ID::next);
    const auto stage = platform.stage();
    const auto requests = platform.ports.sent.size();
    coordinator.reset();
    platform.log.take();
    EXPECT_EQ(platform.notices.observerCount(), 0u);
    EXPECT_EQ(platform.clock.pendingTimers(), 0u);
    EXPECT_FALSE(platform.wake || platform.screens.changed || stage->events.pointer);
    platform.settle();
    platform.pass(100s);
    EXPECT_EQ(platform.ports.sent.size(), requests);
    EXPECT_TRUE(platform.log.take().empty());
}

}  // namespace
}  // namespace quorvane

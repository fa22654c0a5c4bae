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

struct AddOnCoordinatorTest : testing::Test, FakePlatform {
    void start() {
        coordinator->start();
        settle();
    }
    void lockAndShow() {
        start();
        lock();
        pass(800ms);
        ASSERT_TRUE(isCardSeen());
        log.take();
    }
    void touchVolume(Kind kind, double fraction) const {
        const Rect slider = *frame(ID::volume);
        pointer(kind, {slider.x + slider.width * fraction, slider.midY()});
    }
    // The next request finds the client without a connection.
    void disconnect() {
        ports.failures[std::string{kMessagePortBaseName}] = kPortSendTimeout;
        notice(kStateChanged);
        ports.failures.clear();
    }

    std::shared_ptr<AddOnCoordinator> coordinator = AddOnCoordinator::make(live);
};

TEST_F(AddOnCoordinatorTest, StartsInItsStatedOrder) {
    start();
    EXPECT_EQ(log.take(),
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
    log.take();
    lock();
    EXPECT_TRUE(windows.open().empty());
    pass(800ms);
    EXPECT_TRUE(isCardSeen());
    EXPECT_EQ(activities, 1);
    EXPECT_EQ(log.take(),
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
    tap(ID::next);
    mainApp.play("Rush", "Sedge");
    EXPECT_EQ(mainApp.commands, Lines{"nextTrack"});
    pass(790ms);
    EXPECT_EQ(log.take(), Lines{"command: nextTrack"});
    pass(10ms);
    EXPECT_EQ(log.take(),
              (Lines{"State received - track: Reed -> Rush, position: 0.000000s",
                     "state: track changed, artwork 13 B", "state: now 'Rush' — 'Sedge'"}));
    unlock();
    EXPECT_EQ(log.take(),
              (Lines{"lockui: hidden",
                     "state: locked true, lockui false, delay false, allowed true, music true → "
                     "windows false, card false",
                     "windows: closing 1 (state)", "unlock: com.apple.screenIsUnlocked",
                     "state: locked false, lockui false, delay false, allowed true, music true → "
                     "windows false, card false"}));
    EXPECT_TRUE(windows.open().empty());
    EXPECT_EQ(activities, 0);
    const int requests = mainApp.stateRequests;
    pass(10s);
    EXPECT_EQ(mainApp.stateRequests, requests);
    EXPECT_EQ(mainApp.strangers, 0);
}

TEST_F(AddOnCoordinatorTest, AScreenThatIsLockedAtTheStartNeedsNoLockNotice) {
    isLocked = true;
    start();
    notice("com.apple.screenLockUIIsShown");
    pass(800ms);
    EXPECT_TRUE(isCardSeen());
    EXPECT_EQ(mainApp.hellos.size(), 2u);  // the link's own and that of the lock
    EXPECT_EQ(mainApp.hellos[0], (LockScreenAddOnHello{.protocolVersion = 1,
                                                       .addOnVersion = "1.2.3",
                                                       .macOSVersion = "26.1.0",
                                                       .supportsThisMacOS = true,
                                                       .installID = "0F0E0D0C"}));
}

TEST_F(AddOnCoordinatorTest, ARemovalClosesTheWindowsAtOnceAndForGood) {
    lockAndShow();
    const auto removed = stage();
    touchVolume(Kind::down, 0);
    log.take();
    mainApp.configuration.removalRequested = true;
    notice(kConfigurationChanged);
    EXPECT_TRUE(windows.open().empty());
    EXPECT_EQ(activities, 0);
    EXPECT_EQ(mainApp.commands, Lines{"volume 0"});  // the drag's end sends none
    const Lines lines = log.take();
    EXPECT_EQ(lines.back(), "Stopping message port client");
    EXPECT_EQ(Lines(lines.begin() + 1, lines.begin() + 5),
              (Lines{"Configuration: enabled true, removal true, minimum 1.0.0",
                     "Quorvane asked for removal; no more hellos", "removal: closing the windows",
                     "windows: closing 1 (state)"}));

    const std::size_t sent = ports.sent.size();
    if (removed->events.pointer) removed->events.pointer({Kind::up, {}});
    for (const char* name : {AddOnSignals::kStatusRequest, AddOnSignals::kQuit, kStateChanged})
        EXPECT_EQ(notice(name), 0) << name;
    mainApp.configuration.removalRequested = false;
    notice(kConfigurationChanged);
    notice(kMainAppQuits);
    unlock();
    lock();
    pass(100s);
    EXPECT_EQ(ports.sent.size(), sent);
    EXPECT_EQ(windows.windows.size(), 1u);
}

// The removal arrives while a refresh waits for a new connection, and stops the client.
TEST_F(AddOnCoordinatorTest, ARemovalInsideAWaitingSendIsNotUndoneByIt) {
    lockAndShow();
    ports.failures[std::string{kMessagePortBaseName}] = kPortBecameInvalid;
    pass(2s);  // the poll that finds the port dead
    ports.failures.clear();
    mainApp.configuration.removalRequested = true;
    notices.deliver(kConfigurationChanged);  // the hello waits in its queue
    ports.duringSend = [&] {
        ports.duringSend = nullptr;
        settle();
    };
    clock.advance(2s);
    EXPECT_TRUE(log.contains("removal: closing the windows"));
    EXPECT_EQ(notice(kStateChanged), 0);
    const std::size_t sent = ports.sent.size();
    pass(10s);
    EXPECT_EQ(ports.sent.size(), sent);
}

TEST_F(AddOnCoordinatorTest, MemoryForPollsIsFreedWithTheCard) {
    lockAndShow();
    pass(4s);
    EXPECT_GT(ports.sent.back().replyMemory, 0u);
    unlock();
    EXPECT_GT(notice(kStateChanged), 0);
    EXPECT_EQ(ports.sent.back().replyMemory, 0u);
}

TEST_F(AddOnCoordinatorTest, TheMainApplicationsQuitHidesTheCardUntilItPlaysAgain) {
    lockAndShow();
    const std::size_t scenes = stage()->scenes.size();
    notice(kMainAppQuits);
    clock.advance(100ms);
    EXPECT_EQ(stage()->scenes.size(), scenes) << "the fade shows the card as it was";
    EXPECT_FALSE(isCardSeen());
    EXPECT_EQ(windows.open().size(), 1u);
    const Lines lines = log.take();
    EXPECT_EQ(lines.front(), "notice: mainAppWillTerminate; hiding the card");
    EXPECT_EQ(std::ranges::count(lines, kCleared), 1);
    EXPECT_EQ(lines.back(),
              "state: locked true, lockui true, delay true, allowed true, music false");
    mainApp.quit();
    pass(10s);
    EXPECT_FALSE(log.contains(kCleared)) << "the quit has cleared it already";

    mainApp.launch();
    notice(kStateChanged);
    EXPECT_TRUE(isCardSeen());
    EXPECT_EQ(windows.windows.size(), 1u);

    mainApp.quit();  // without a notice
    pass(10s);
    EXPECT_FALSE(isCardSeen());
    EXPECT_TRUE(log.contains(kCleared));
}

// The state that a new connection brings is older than the user's edit.
TEST_F(AddOnCoordinatorTest, AnEditOutlastsTheStateOfAConnectionThatItNeeds) {
    const auto playPauseLabel = [&] {
        clock.advance(Duration{});
        const auto& controls = stage()->scenes.back().controls;
        return std::ranges::find(controls, ID::playPause, &SceneControl::id)->label;
    };
    lockAndShow();
    disconnect();
    EXPECT_EQ(playPauseLabel(), "Pause");
    tap(ID::playPause);
    EXPECT_EQ(playPauseLabel(), "Play");
    pass(1s);

    disconnect();
    ports.duringSend = [&] {
        ports.duringSend = nullptr;
        touchVolume(Kind::dragged, 0.755);
        clock.advance(100ms);  // the newer volume is sent while the older one waits
    };
    touchVolume(Kind::down, 0.255);
    EXPECT_EQ(mainApp.commands, (Lines{"playPause", "volume 75"}));
}

TEST_F(AddOnCoordinatorTest, ATapAtTheVolumeThatIsShownSendsNoOlderOne) {
    lockAndShow();
    stage()->events.accessibility(ID::volume, AccessibilityAction::increment);
    pass(1s);
    mainApp.state.volume = 80;
    notice(kStateChanged);
    touchVolume(Kind::down, 0.805);
    touchVolume(Kind::up, 0.805);
    EXPECT_EQ(mainApp.commands, Lines{"volume 55"});
}

TEST_F(AddOnCoordinatorTest, AnswersTheInstallerAlsoWithoutAVersion) {
    live.services.process.bundleProperties.clear();
    start();
    EXPECT_TRUE(log.contains("launch: -, pid 4711"));
    EXPECT_TRUE(log.contains("link: add-on -, macOS 26.1.0, supported true, install 0F0E0D0C"));
    EXPECT_EQ(mainApp.hellos.at(0).addOnVersion, "0");
    log.take();
    notice(AddOnSignals::kStatusRequest);
    mainApp.quit();
    notice(kStateChanged);
    notice(AddOnSignals::kQuit);
    EXPECT_EQ(terminations, 1);
    EXPECT_TRUE(log.contains("installer: status requested; connected true"));
    EXPECT_TRUE(log.contains("installer: asked to quit"));
    std::string connected;
    for (const auto& [name, userInfo] : notices.posted) {
        const auto status = AddOnSignals::Status::fromUserInfo(userInfo).value();
        EXPECT_EQ(name, AddOnSignals::kStatus);
        EXPECT_EQ(status.version, "-");
        connected += status.isConnected ? "+" : "-";
    }
    EXPECT_EQ(connected, "++-") << "at the start, when asked, when it ends";
}

// The end of a drag sends a volume and waits for a new connection. Events that arrive during the
// wait decide about the windows.
TEST_F(AddOnCoordinatorTest, EventsDuringADragsEndDecideAboutTheWindows) {
    const struct {
        bool unlocks, isByPress;
    } rows[] = {{true, false}, {false, false}, {true, true}};
    const auto changeScreens = [this] {
        screens.list.front().scale += 1;
        screens.changed();
    };
    for (const auto& row : rows) {
        lockAndShow();
        touchVolume(Kind::down, 0.25);
        disconnect();
        ports.duringSend = [&] { row.unlocks ? unlock() : changeScreens(); };
        row.isByPress ? touchVolume(Kind::down, 0.25) : changeScreens();
        EXPECT_FALSE(ports.duringSend);
        settle();
        EXPECT_EQ(windows.open().size(), row.unlocks ? 0u : 1u);
        unlock();
        EXPECT_TRUE(windows.open().empty());
        EXPECT_EQ(activities, 0);
        coordinator = AddOnCoordinator::make(live);
    }
}

}  // namespace
}  // namespace quorvane

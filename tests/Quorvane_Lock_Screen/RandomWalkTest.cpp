// The whole add-on through long random sequences of events, checked against the few rules that
// always hold.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "Quorvane_Lock_Screen/AddOnCoordinator.hpp"
#include "tests/support/FakePlatform.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

class RandomWalk : public testing::Test {
protected:
    RandomWalk() : coordinator_(AddOnCoordinator::make(platform_.live)) {
        coordinator_->start();
        platform_.settle();
    }

    std::size_t any(std::size_t below) { return random_() % below; }

    void move() {
        // Mostly moves that lead to a card, or the walk would rarely show one.
        const std::size_t kind = any(40);
        if (kind < 5) return lock();
        if (kind < 10) return setLockUI(true);
        if (kind < 13) return play();
        if (kind < 15) return launchMainApp();
        if (kind < 19) return drag();
        if (kind < 28) return pass(std::chrono::milliseconds{10 * any(150)});
        switch (kind) {
            case 28: return unlock();
            case 29: return setLockUI(false);
            case 30: return wake();
            case 31: return changeScreens();
            case 32: return stopPlaying();
            case 33: return quitMainApp();
            case 34: return allow(any(4) != 0);
            case 35: platform_.mainApp.lies = any(3) == 0; return;
            default: return tap(any(2) == 0 ? SceneControl::ID::next : SceneControl::ID::love);
        }
    }

    void expectTheRules() {
        const bool wanted = isWanted();
        ASSERT_EQ(platform_.windows.open().size(), wanted ? platform_.screens.list.size() : 0);
        ASSERT_EQ(platform_.activities, wanted && !platform_.screens.list.empty() ? 1 : 0);
        for (std::size_t window = 0; window < platform_.windows.open().size(); ++window)
            if (platform_.isCardSeen(window)) ++timesSeen_;
        ASSERT_EQ(platform_.mainApp.strangers, 0) << "a request without the secret";
    }

    int timesSeen_ = 0;
    int drags_ = 0;

private:
    bool isWanted() const { return isLocked_ && isShown_ && isAllowed_ && together_ >= 800ms; }

    void lock() {
        platform_.isLocked = isLocked_ = true;
        platform_.notice("com.apple.screenIsLocked");
    }
    void unlock() {
        platform_.isLocked = isLocked_ = isShown_ = false;
        platform_.notice("com.apple.screenIsUnlocked");
        noteTogether();
    }
    void setLockUI(bool isShown) {
        isShown_ = isShown;
        platform_.notice(isShown ? "com.apple.screenLockUIIsShown"
                                 : "com.apple.screenLockUIIsHidden");
        noteTogether();
    }
    // A wake, at which the add-on asks for the state; sometimes it has missed an unlock.
    void wake() {
        if (any(3) == 0) platform_.isLocked = false;
        platform_.wake();
        platform_.settle();
        isLocked_ = platform_.isLocked;
        isShown_ = isShown_ && isLocked_;
        noteTogether();
    }
    void changeScreens() {
        platform_.screens.list.assign(any(4), {.frame = {0, 0, 1920, 1080}});
        platform_.screens.changed();
        pass(1s);
    }

    void play() {
        platform_.mainApp.play("Rush " + std::to_string(any(3)), "Sedge");
        platform_.notice(kStateChanged);
    }
    void stopPlaying() {
        platform_.mainApp.state.track.reset();
        platform_.notice(kStateChanged);
    }
    void allow(bool isAllowed) {
        if (!isServing_ || platform_.mainApp.lies) return;  // the add-on cannot receive it
        platform_.mainApp.configuration.isEnabled = isAllowed_ = isAllowed;
        platform_.notice("example.quillon.Quorvane.lockScreenConfigurationChanged");
    }
    void quitMainApp() {
        if (any(2) == 0) platform_.notice("example.quillon.Quorvane.mainAppWillTerminate");
        platform_.mainApp.quit();
        isServing_ = false;
    }
    void launchMainApp() {
        if (isServing_) return;
        platform_.mainApp.launch();
        isServing_ = true;
        platform_.notice(kStateChanged);
    }

    void tap(SceneControl::ID control) {
        platform_.tap(control);
        platform_.settle();
        lastTap_ = now_;
    }
    // A drag with a hundred moves a second, which may end without a release.
    void drag() {
        const auto slider = platform_.frame(SceneControl::ID::volume);
        if (!slider || !isServing_ || platform_.windows.open()[0]->ignoresMouseEvents) return;
        const auto anywhere = [&] {
            return Point{slider->x + static_cast<double>(any(200)), slider->midY()};
        };
        const std::size_t before = platform_.mainApp.commands.size();
        const std::size_t moves = any(100);
        platform_.pointer(PointerEvent::Kind::down, anywhere());
        for (std::size_t i = 0; i < moves; ++i) {
            platform_.pointer(PointerEvent::Kind::dragged, anywhere());
            pass(10ms);
        }
        const std::size_t sends = platform_.mainApp.commands.size() - before;
        // One may be left from the previous drag.
        ASSERT_LE(sends, 2 + moves * 10ms / VolumeSender::kInterval);
        if (any(4) == 0) return;  // the pointer vanishes
        platform_.pointer(PointerEvent::Kind::up, anywhere());
        platform_.settle();
        const std::string last = platform_.mainApp.commands.back();
        pass(10ms);  // until it is drawn
        const auto controls = platform_.stage()->scenes.back().controls;
        const auto volume =
            std::ranges::find(controls, SceneControl::ID::volume, &SceneControl::id);
        ASSERT_EQ(last, "volume " + std::to_string(std::lround(volume->number)));
        ++drags_;
    }

    void pass(Duration duration) {
        for (; duration > Duration{}; duration -= 10ms) {
            const int requests = platform_.mainApp.stateRequests;
            const std::size_t hellos = platform_.mainApp.hellos.size();
            const bool wasWanted = isWanted();
            platform_.pass(10ms);
            now_ += 10ms;
            if (isLocked_ && isShown_) together_ += 10ms;
            // A hello may find the link broken; a new connection begins with a request.
            if (wasWanted || isWanted() || platform_.mainApp.hellos.size() != hellos) continue;
            if (now_ - lastTap_ <= 800ms) continue;  // a request follows each command
            ASSERT_EQ(platform_.mainApp.stateRequests, requests) << "polls without a card";
        }
    }
    void noteTogether() {
        if (!isLocked_ || !isShown_) together_ = Duration{};
    }

    const unsigned seed_ = std::random_device{}();
    testing::ScopedTrace trace_{__FILE__, __LINE__, "seed " + std::to_string(seed_)};
    std::mt19937 random_{seed_};
    FakePlatform platform_;
    std::shared_ptr<AddOnCoordinator> coordinator_;

    bool isLocked_ = false;
    bool isShown_ = false;
    bool isAllowed_ = true;
    bool isServing_ = true;
    Duration together_{};  // how long the screen has been both locked and shown
    Duration now_{};
    Duration lastTap_ = -1s;
};

TEST_F(RandomWalk, ShowsCardsExactlyWhenTheyAreWantedAndIsQuietOtherwise) {
    for (int step = 0; step < 2'000; ++step) {
        move();
        if (HasFatalFailure()) FAIL() << "at step " << step;
        expectTheRules();
        if (HasFatalFailure()) FAIL() << "at step " << step;
    }
    EXPECT_GT(timesSeen_, 0);
    EXPECT_GT(drags_, 0);
}

}  // namespace
}  // namespace quorvane

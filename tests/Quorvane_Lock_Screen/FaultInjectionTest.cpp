#include <gtest/gtest.h>

#include "Quorvane_Lock_Screen/AddOnCoordinator.hpp"
#include "tests/support/FakePlatform.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

std::shared_ptr<AddOnCoordinator> started(FakePlatform& platform) {
    auto coordinator = AddOnCoordinator::make(platform.live);
    coordinator->start();
    platform.settle();
    return coordinator;
}

// Everything that can happen during a lock.
void lockOnce(FakePlatform& platform) {
    platform.lock();
    platform.pass(800ms);
    platform.tap(SceneControl::ID::next);
    platform.mainApp.play("Rush", "Sedge");
    platform.notice(kStateChanged);
    platform.pass(1s);
    if (const auto slider = platform.frame(SceneControl::ID::volume)) {
        platform.pointer(PointerEvent::Kind::down, {slider->x, slider->midY()});
        platform.pointer(PointerEvent::Kind::dragged, {slider->midX(), slider->midY()});
        platform.pointer(PointerEvent::Kind::up, {slider->midX(), slider->midY()});
    }
    platform.screens.list.push_back({.frame = {1920, 0, 1280, 1024}});
    if (platform.screens.changed) platform.screens.changed();
    platform.pass(2s);
    if (platform.wake) platform.wake();
    platform.pass(100ms);
}

void expectNothingIsLeft(const FakePlatform& platform) {
    EXPECT_TRUE(platform.windows.open().empty());
    EXPECT_EQ(platform.activities, 0);
    for (const auto& window : platform.windows.windows) EXPECT_TRUE(window->isClosed);
}

void expectTheNextLockWorks(FakePlatform& platform) {
    platform.faults.failing = 0;
    platform.mainApp.commands.clear();
    platform.mainApp.hellos.clear();
    platform.lock();
    platform.pass(800ms);
    ASSERT_EQ(platform.windows.open().size(), 2u);
    EXPECT_TRUE(platform.isCardSeen(0) && platform.isCardSeen(1));
    EXPECT_EQ(platform.activities, 1);
    platform.tap(SceneControl::ID::next);
    EXPECT_EQ(platform.mainApp.commands, Lines{"nextTrack"});
    EXPECT_FALSE(platform.mainApp.hellos.empty()) << "a lost answer does not stop the hellos";
    platform.unlock();
    expectNothingIsLeft(platform);
}

int callsOfALock() {
    FakePlatform platform;
    const auto coordinator = started(platform);
    lockOnce(platform);
    platform.unlock();
    return platform.faults.calls;
}

TEST(FaultInjection, TheWholeLockGoesThroughEveryOperationThatCanFail) {
    FakePlatform platform;
    const auto coordinator = started(platform);
    lockOnce(platform);
    platform.unlock();
    EXPECT_EQ(platform.mainApp.commands, (Lines{"nextTrack", "volume 0", "volume 50"}));
    EXPECT_EQ(platform.windows.windows.size(), 3u);
    EXPECT_GT(platform.faults.calls, 50);
    expectNothingIsLeft(platform);
    expectTheNextLockWorks(platform);
}

// The n-th call fails, either alone or with all later calls until the unlock.
TEST(FaultInjection, NoFaultLeavesAWindowOrSpoilsTheNextLock) {
    const int calls = callsOfALock();
    for (const bool isLasting : {false, true})
        for (int failing = 1; failing <= calls; ++failing) {
            SCOPED_TRACE(testing::Message() << "call " << failing << " of " << calls
                                            << (isLasting ? " and all later ones" : ""));
            FakePlatform platform;
            platform.faults = {.failing = failing, .isLasting = isLasting};
            const auto coordinator = started(platform);
            lockOnce(platform);
            platform.unlock();
            EXPECT_GE(platform.faults.calls, failing);
            expectNothingIsLeft(platform);
            expectTheNextLockWorks(platform);
            EXPECT_EQ(platform.mainApp.strangers, 0);
            if (testing::Test::HasFailure()) return;
        }
}

// A waiting send may run the main loop: an unlock or the end may arrive inside it.
class InsideASend : public testing::TestWithParam<bool> {};

TEST_P(InsideASend, AnUnlockOrTheEndLeavesNothingBehind) {
    const bool ends = GetParam();
    for (std::size_t waiting = 0;; ++waiting) {
        SCOPED_TRACE(testing::Message() << "in send " << waiting);
        FakePlatform platform;
        auto coordinator = started(platform);
        platform.ports.sent.clear();
        bool hasCome = false;
        const std::function<void()> come = [&] {
            if (platform.ports.sent.size() <= waiting) {
                platform.ports.duringSend = come;
                return;
            }
            hasCome = true;
            ends ? coordinator->willTerminate() : platform.unlock();
            expectNothingIsLeft(platform);  // at once, however long the send may wait
        };
        platform.ports.duringSend = come;
        lockOnce(platform);
        platform.ports.duringSend = nullptr;
        if (!hasCome) break;
        if (ends) continue;  // the process would not have gone on
        expectNothingIsLeft(platform);
        expectTheNextLockWorks(platform);
    }
}

INSTANTIATE_TEST_SUITE_P(Both, InsideASend, testing::Bool());

}  // namespace
}  // namespace quorvane

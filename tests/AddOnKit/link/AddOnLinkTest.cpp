#include "AddOnKit/link/AddOnLink.hpp"

#include <gtest/gtest.h>

#include "tests/support/ManualClock.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

using Outcome = LockScreenHelloResult::Outcome;

const LockScreenHelloResult kEnabled{Outcome::answered, {true, false, "1.0.0"}};
const LockScreenHelloResult kDisabled{Outcome::answered, {false, false, "0"}};
const LockScreenHelloResult kRemoval{Outcome::answered, {false, true, "1.0.0"}};
const LockScreenHelloResult kNoAnswer{Outcome::unanswered, {}};
const LockScreenHelloResult kNotSent{};

AddOnIdentity identity(bool isSupported = true, bool isInstalled = false) {
    return {.installID = "ID",
            .addOnVersion = "1.2.3",
            .macOSVersion = "26.1.0",
            .supportsThisMacOS = isSupported,
            .supersedeOnce = SupersedeOnce{isInstalled}};
}

// A link whose hellos are kept until the test ends them.
struct Fixture {
    ManualClock clock;
    RecordingLog log;
    std::vector<LockScreenAddOnHello> hellos;
    std::vector<AddOnLink::HelloCompletion> waiting;
    int removals = 0;
    std::function<void()> atRemoval = [this] { ++removals; };
    std::unique_ptr<AddOnLink> link;

    explicit Fixture(AddOnIdentity who = identity()) {
        const auto send = [this](const LockScreenAddOnHello& hello, const auto& completion) {
            hellos.push_back(hello);
            waiting.push_back(completion);
        };
        link = std::make_unique<AddOnLink>(
            std::move(who), send, clock.clock(), [this] { atRemoval(); }, log.sink());
    }
    void answer(const LockScreenHelloResult& result) {
        ASSERT_EQ(waiting.size(), 1u);
        const auto completion = std::move(waiting.front());
        waiting.clear();
        completion(result);
    }
};

TEST(AddOnLink, AllowsThePlayerOnlyOnASupportedSystem) {
    for (const bool isSupported : {true, false}) {
        Fixture f{identity(isSupported)};
        EXPECT_FALSE(f.link->allowsPlayer());
        f.link->start();
        f.link->start();
        EXPECT_EQ(f.hellos.back().supportsThisMacOS, isSupported);
        f.answer(kEnabled);
        EXPECT_EQ(f.link->allowsPlayer(), isSupported);
        EXPECT_EQ(f.hellos.size(), 1u);
    }
}

TEST(AddOnLink, AsksForOneFollowUpHoweverOftenItIsAsked) {
    Fixture f;
    f.link->start();
    for (int i = 0; i < 3; ++i) f.link->sayHello();
    EXPECT_EQ(f.hellos.size(), 1u);
    f.answer(kEnabled);
    EXPECT_EQ(f.hellos.size(), 2u);
    EXPECT_EQ(f.clock.pendingTimers(), 0u);  // the timer starts at the follow-up's answer
    f.answer(kEnabled);
    EXPECT_EQ(f.hellos.size(), 2u);
    EXPECT_EQ(f.clock.pendingTimers(), 1u);
    // An observer that says hello itself has sent the follow-up already.
    const Handle handle = f.link->configuration().subscribe([&] { f.link->sayHello(); });
    f.link->sayHello();
    f.link->sayHello();
    f.answer(kDisabled);
    f.answer(kDisabled);
    EXPECT_EQ(f.hellos.size(), 4u);
    EXPECT_TRUE(f.waiting.empty());
}

TEST(AddOnLink, ARemovalRequestEndsItForGood) {
    Fixture f;
    // Observers of the request run before the link has stopped. Even then it sends no hello.
    const Handle handle = f.link->configuration().subscribe([&] { f.link->sayHello(); });
    Lines linesAtStop;
    const Handle stopped = f.link->isStopped().subscribe([&] { linesAtStop = f.log.take(); });
    f.link->start();
    f.link->sayHello();
    f.answer(kRemoval);
    EXPECT_EQ(linesAtStop, (Lines{"Configuration: enabled false, removal true, minimum 1.0.0",
                                  "Quorvane asked for removal; no more hellos"}));
    f.link->start();
    f.link->sayHello();
    f.clock.advance(10min);
    EXPECT_EQ(f.hellos.size(), 1u);
    EXPECT_EQ(f.removals, 1);
}

TEST(AddOnLink, ALateAnswerIsIgnored) {
    Fixture f;
    f.link->start();
    f.answer(kEnabled);
    f.link->sayHello();
    EXPECT_TRUE(f.link->allowsPlayer());
    const auto completion = f.waiting.front();
    f.link->stop();
    EXPECT_FALSE(f.link->allowsPlayer());
    f.answer(kRemoval);
    EXPECT_EQ(f.removals, 0);
    EXPECT_EQ(f.clock.pendingTimers(), 0u);
    f.link.reset();
    completion(kEnabled);
}

TEST(AddOnLink, SupersedesARemovalInTheFirstHelloThatIsSentAndNotForLong) {
    const auto superseding = [](const std::vector<LockScreenHelloResult>& results) {
        Fixture f{identity(true, true)};
        std::vector<bool> said;
        for (const auto& result : results) {
            f.link->sayHello();
            said.push_back(f.hellos.back().supersedesRemoval);
            f.answer(result);
            f.clock.advance(100s);
        }
        EXPECT_EQ(f.link->identity(), identity(true, true));  // the identity has not changed
        return said;
    };
    EXPECT_EQ(superseding({kNotSent, kNotSent, kNotSent, kNotSent}),
              (std::vector{true, true, true, false}));
    EXPECT_EQ(superseding({kNotSent, kNoAnswer, kNotSent}), (std::vector{true, true, false}));
}

}  // namespace
}  // namespace quorvane

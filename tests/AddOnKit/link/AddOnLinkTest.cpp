#include "AddOnKit/link/AddOnLink.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

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
    bool removalDestroysLink = false;
    std::unique_ptr<AddOnLink> link;

    explicit Fixture(AddOnIdentity who = identity()) {
        link = std::make_unique<AddOnLink>(
            std::move(who),
            [this](LockScreenAddOnHello hello, AddOnLink::HelloCompletion completion) {
                hellos.push_back(std::move(hello));
                waiting.push_back(std::move(completion));
            },
            clock.clock(),
            [this] {
                if (removalDestroysLink) link.reset();
                ++removals;
            },
            log.sink());
    }
    void answer(const LockScreenHelloResult& result) {
        ASSERT_EQ(waiting.size(), 1u);
        const auto completion = std::move(waiting.front());
        waiting.clear();
        completion(result);
    }
};

TEST(AddOnLink, SaysWhoItIsAMinuteAfterEachAnswer) {
    Fixture f;
    f.link->start();
    f.link->start();
    f.clock.advance(10min);  // no answer, no further hello
    ASSERT_EQ(f.hellos.size(), 1u);
    EXPECT_EQ(f.hellos[0], (LockScreenAddOnHello{.protocolVersion = 1,
                                                 .addOnVersion = "1.2.3",
                                                 .macOSVersion = "26.1.0",
                                                 .supportsThisMacOS = true,
                                                 .installID = "ID"}));
    f.answer(kEnabled);
    f.clock.advance(59s);
    f.link->sayHello();  // in between, which does not move the loop
    f.answer(kNoAnswer);
    EXPECT_EQ(f.hellos.size(), 2u);
    f.clock.advance(1s);
    EXPECT_EQ(f.hellos.size(), 3u);
    f.answer(kNoAnswer);
    f.clock.advance(60s);
    EXPECT_EQ(f.hellos.size(), 4u);
}

TEST(AddOnLink, FollowsTheAnswersAndKeepsTheLastWhenNoneComes) {
    Fixture f;
    std::vector<bool> allowed;
    const Handle handle =
        f.link->configuration().subscribe([&] { allowed.push_back(f.link->allowsPlayer()); });
    EXPECT_FALSE(f.link->allowsPlayer());
    for (const auto& result : {kNoAnswer, kEnabled, kEnabled, kNoAnswer, kDisabled, kEnabled}) {
        f.link->sayHello();
        f.answer(result);
    }
    EXPECT_EQ(allowed, (std::vector{true, false, true}));
    EXPECT_EQ(f.log.lines().front().level, LogLevel::info);
    EXPECT_EQ(f.log.take(), (Lines{"Configuration: enabled true, removal false, minimum 1.0.0",
                                   "Configuration: enabled false, removal false, minimum 0",
                                   "Configuration: enabled true, removal false, minimum "
                                   "1.0.0"}));
    Fixture unsupported{identity(false)};
    unsupported.link->sayHello();
    unsupported.answer(kEnabled);
    EXPECT_FALSE(unsupported.link->allowsPlayer());
}

TEST(AddOnLink, AsksForOneFollowUpHoweverOftenItIsAsked) {
    Fixture f;
    f.link->start();
    for (int i = 0; i < 3; ++i) f.link->sayHello();
    EXPECT_EQ(f.hellos.size(), 1u);
    f.answer(kEnabled);
    EXPECT_EQ(f.hellos.size(), 2u);
    EXPECT_EQ(f.clock.pendingTimers(), 0u);  // the loop's turn is over when the follow-up is
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
    // Observers hear of the request before the link has stopped; even so no hello goes out.
    const Handle handle = f.link->configuration().subscribe([&] { f.link->sayHello(); });
    std::vector<std::string> linesAtStop;
    const Handle stopped = f.link->isStopped().subscribe([&] { linesAtStop = f.log.take(); });
    f.link->start();
    f.link->sayHello();
    f.answer(kRemoval);
    EXPECT_EQ(linesAtStop, (Lines{"Configuration: enabled false, removal true, minimum 1.0.0",
                                  "Quorvane asked for removal; no more hellos"}));
    EXPECT_EQ(f.removals, 1);
    EXPECT_TRUE(f.link->isStopped().get());
    f.link->start();
    f.link->sayHello();
    f.clock.advance(10min);
    EXPECT_EQ(f.hellos.size(), 1u);
    EXPECT_EQ(f.removals, 1);
}

TEST(AddOnLink, AnAnswerAfterTheStopOrTheEndIsIgnored) {
    Fixture f;
    f.link->start();
    f.answer(kEnabled);
    f.link->sayHello();
    f.link->stop();
    EXPECT_FALSE(f.link->allowsPlayer());
    f.answer(kRemoval);
    EXPECT_EQ(f.removals, 0);
    EXPECT_EQ(f.clock.pendingTimers(), 0u);

    Fixture gone;
    gone.link->start();
    gone.link.reset();
    gone.answer(kEnabled);

    Fixture twice;
    twice.link->sayHello();
    const auto completion = twice.waiting.front();
    twice.answer(kEnabled);
    completion(kDisabled);  // a completion that comes twice
    EXPECT_TRUE(twice.link->allowsPlayer());
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
        EXPECT_EQ(f.link->identity(), identity(true, true));  // who it is has not changed
        return said;
    };
    EXPECT_EQ(superseding({kNotSent, kNotSent, kNotSent, kNotSent}),
              (std::vector{true, true, true, false}));
    EXPECT_EQ(superseding({kNotSent, kNoAnswer, kNotSent}), (std::vector{true, true, false}));
    EXPECT_EQ(superseding({kEnabled, kNotSent}), (std::vector{true, false}));
}

TEST(AddOnLink, ObserversAndTheRemovalMayDestroyIt) {
    for (const int what : {0, 1, 2}) {
        Fixture f;
        f.removalDestroysLink = what == 2;
        const auto destroy = [&] { f.link.reset(); };
        Handle handle;
        if (what == 0) handle = f.link->configuration().subscribe(destroy);
        if (what == 1) handle = f.link->isStopped().subscribe(destroy);
        f.link->start();
        f.answer(kRemoval);
        EXPECT_EQ(f.link, nullptr);
        EXPECT_EQ(f.removals, what == 2 ? 1 : 0);
    }
}

}  // namespace
}  // namespace quorvane

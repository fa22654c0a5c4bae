#include <gtest/gtest.h>

#include "QuorvaneKit/link/LockScreenHelloClient.hpp"
#include "QuorvaneKit/records/LockScreenAddOnStatus.hpp"
#include "QuorvaneKit/records/LockScreenHelloOutcome.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "platform/MessagePort.hpp"
#include "tests/support/ManualClock.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

using Outcome = LockScreenHelloOutcome;
using Kind = QueryOutcome::Kind;

const LockScreenAddOnHello kHello{1, "1.2.3", "26.1.0", true, "A", false};

TEST(LockScreenHello, TheOutcomeFollowsThePendingRemoval) {
    using Removal = std::optional<LockScreenPendingRemoval>;
    using ID = std::optional<std::string>;
    struct Row {
        Removal pending;
        ID helloID;
        bool supersedes;
        Outcome outcome;
    };
    const Removal none;
    const Removal forAnyone = LockScreenPendingRemoval{};
    const Removal forA = LockScreenPendingRemoval{"A"};
    for (const auto& [pending, helloID, supersedes, outcome] : {
             Row{none, "A", false, Outcome::answer},
             Row{none, ID{}, true, Outcome::answer},
             Row{forA, "A", true, Outcome::supersedeRemoval},
             Row{forAnyone, ID{}, true, Outcome::supersedeRemoval},
             Row{forA, "A", false, Outcome::deliverRemoval},
             Row{forAnyone, "A", false, Outcome::deliverRemoval},
             Row{forA, ID{}, false, Outcome::deliverRemoval},
             Row{forAnyone, ID{}, false, Outcome::deliverRemoval},
             Row{forA, "B", false, Outcome::supersedeRemoval},
             Row{forA, "", false, Outcome::supersedeRemoval},
         }) {
        LockScreenAddOnHello hello = kHello;
        hello.installID = helloID;
        hello.supersedesRemoval = supersedes;
        EXPECT_EQ(decideLockScreenHello(pending, hello), outcome);
    }
}

TEST(LockScreenHelloClient, TellsWhetherTheHelloWasSentAndAnswered) {
    using Result = LockScreenHelloResult;
    const LockScreenAddOnConfiguration failure{false, false, "0"};
    const LockScreenAddOnConfiguration good{true, true, "1.0.0"};
    const Bytes reply = *XPCCodableHelpers::encode(good);
    const auto received = [](const QueryOutcome& outcome) {
        std::vector<Result> results;
        const SendQuery sendQuery = [&](MessageType type, const Bytes& payload, Duration timeout,
                                        const std::function<void(QueryOutcome)>& completion) {
            EXPECT_EQ(type, MessageType::lockScreenHello);
            EXPECT_EQ(XPCCodableHelpers::decode<LockScreenAddOnHello>(payload), kHello);
            EXPECT_EQ(timeout, kLockScreenHelloReceiveTimeout);
            completion(outcome);
        };
        sendLockScreenHello(kHello, sendQuery, Logger{},
                            [&](const auto& result) { results.push_back(result); });
        return results;
    };
    for (const auto& [query, result] :
         {std::pair{QueryOutcome{Kind::sent, kPortSuccess, reply},
                    Result{Result::Outcome::answered, good}},
          {{Kind::notSent, 0, reply}, {Result::Outcome::notSent, failure}},
          {{Kind::expiredInQueue, 0, reply}, {Result::Outcome::notSent, failure}},
          {{Kind::sent, kPortSendTimeout, reply}, {Result::Outcome::notSent, failure}},
          {{Kind::sent, kPortReceiveTimeout, reply}, {Result::Outcome::unanswered, failure}},
          {{Kind::sent, 0, {}}, {Result::Outcome::unanswered, failure}},
          {{Kind::sent, 0, Bytes{}}, {Result::Outcome::unanswered, failure}},
          {{Kind::sent, 0, copyOf(bytesOf("{}"))}, {Result::Outcome::unanswered, failure}}})
        EXPECT_EQ(received(query), std::vector{result});
}

TEST(LockScreenHelloClient, AHelloThatDoesNotEncodeIsLoggedAndNotSent) {
    RecordingLog log;
    LockScreenAddOnHello hello = kHello;
    hello.macOSVersion = "\xFF";
    std::optional<LockScreenHelloResult> result;
    sendLockScreenHello(
        hello, [](auto&&...) { FAIL() << "was sent"; }, Logger{log.sink(), "QuorvaneKit", "test"},
        [&](const auto& ended) { result = ended; });
    EXPECT_EQ(log.take(), Lines{"Lock-screen hello not sent: it did not encode"});
    EXPECT_EQ(result, LockScreenHelloResult{});
}

TEST(LockScreenAddOnStatus, FollowsVersionSupportAndAge) {
    constexpr WallTime now = ManualClock::kStart;
    using std::chrono::seconds;
    const auto status = [&](std::string version, bool supports, seconds age) {
        LockScreenAddOnHello hello = kHello;
        hello.addOnVersion = std::move(version);
        hello.supportsThisMacOS = supports;
        return lockScreenAddOnStatus(sightingOf(hello, now - age), now);
    };
    const LockScreenAddOnStatus waiting = LockScreenAddOnWaitingForUpdate{"26.1.0"};
    EXPECT_EQ(lockScreenAddOnStatus({}, now), LockScreenAddOnStatus{LockScreenAddOnNotInstalled{}});
    for (const seconds age : {seconds{0}, seconds{150}, seconds{-150}})
        EXPECT_EQ(status("1.0", true, age), LockScreenAddOnStatus{LockScreenAddOnConnected{"1.0"}});
    for (const seconds age : {seconds{151}, seconds{-151}, seconds{90'000}})
        EXPECT_EQ(status("1.0.1", true, age),
                  (LockScreenAddOnStatus{LockScreenAddOnNotConnected{"1.0.1", now - age}}));
    EXPECT_EQ(status("9.0.0", false, seconds{0}), waiting);
    EXPECT_EQ(status("0.9.9", true, seconds{0}), waiting);
    EXPECT_EQ(status("0", true, seconds{500}), waiting);
}

TEST(LockScreenAddOnStatus, VersionsCompareNumberByNumber) {
    for (const auto& [older, newer] : {std::pair{"1.9.9", "1.10.0"},
                                       {"1.0.0", "1.0.0.1"},
                                       {"", "0.0.1"},
                                       {"x", "1"},
                                       {"0.99999999999999999999", "1"},
                                       {"2.0", "99999999999999999999"},
                                       {".9", "1"}}) {
        EXPECT_TRUE(isOlderVersion(older, newer)) << older;
        EXPECT_FALSE(isOlderVersion(newer, older)) << older;
    }
    EXPECT_FALSE(isOlderVersion("1", "1.0.0") || isOlderVersion("1.0.0", "1"));
}

}  // namespace
}  // namespace quorvane

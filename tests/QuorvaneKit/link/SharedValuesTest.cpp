// The values that the main application and the add-on exchange and store for each other.
#include <gtest/gtest.h>

#include "QuorvaneKit/link/LockScreenHelloClient.hpp"
#include "QuorvaneKit/link/MessagePortSecret.hpp"
#include "QuorvaneKit/link/SharedDefaults.hpp"
#include "QuorvaneKit/records/LockScreenAddOnStatus.hpp"
#include "QuorvaneKit/records/LockScreenHelloOutcome.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "platform/MessagePort.hpp"
#include "tests/support/ManualClock.hpp"
#include "tests/support/MemoryDefaults.hpp"
#include "tests/support/MemoryFileStore.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

using Outcome = LockScreenHelloOutcome;
using Kind = QueryOutcome::Kind;

const LockScreenAddOnHello kHello{1, "1.2.3", "26.1.0", true, "A", false};

TEST(LockScreenHello, TheOutcomeFollowsThePendingRemoval) {
    using Removal = LockScreenPendingRemoval;
    const auto decide = [](const std::optional<Removal>& pending, std::optional<std::string> id,
                           bool supersedes) {
        LockScreenAddOnHello hello = kHello;
        hello.installID = std::move(id);
        hello.supersedesRemoval = supersedes;
        return decideLockScreenHello(pending, hello);
    };
    EXPECT_EQ(decide({}, "A", false), Outcome::answer);
    EXPECT_EQ(decide({}, {}, true), Outcome::answer);
    EXPECT_EQ(decide(Removal{"A"}, "A", true), Outcome::supersedeRemoval);
    EXPECT_EQ(decide(Removal{}, {}, true), Outcome::supersedeRemoval);
    EXPECT_EQ(decide(Removal{"A"}, "A", false), Outcome::deliverRemoval);
    EXPECT_EQ(decide(Removal{}, "A", false), Outcome::deliverRemoval);
    EXPECT_EQ(decide(Removal{"B"}, {}, false), Outcome::deliverRemoval);
    EXPECT_EQ(decide(Removal{"A"}, "B", false), Outcome::supersedeRemoval);
}

TEST(LockScreenHelloClient, TellsWhetherTheHelloWasSentAndAnswered) {
    using Result = LockScreenHelloResult;
    const LockScreenAddOnConfiguration good{true, true, "1.0.0"};
    const Bytes reply = *XPCCodableHelpers::encode(good);
    const auto send = [](const QueryOutcome& query) {
        std::vector<Result> results;
        const SendQuery sendQuery = [&](MessageType type, const Bytes& payload, Duration timeout,
                                        const std::function<void(QueryOutcome)>& completion) {
            EXPECT_EQ(type, MessageType::lockScreenHello);
            EXPECT_EQ(XPCCodableHelpers::decode<LockScreenAddOnHello>(payload), kHello);
            EXPECT_EQ(timeout, std::chrono::seconds{5});
            completion(query);
        };
        sendLockScreenHello(kHello, sendQuery, Logger{},
                            [&](const auto& ended) { results.push_back(ended); });
        return results;
    };
    EXPECT_EQ(send({Kind::sent, 0, reply}), (std::vector{Result{Result::Outcome::answered, good}}));
    for (const auto& query : {QueryOutcome{Kind::sent, kPortReceiveTimeout, reply},
                              {Kind::sent, 0, std::nullopt},
                              {Kind::sent, 0, copyOf(bytesOf("{}"))}})
        EXPECT_EQ(send(query),
                  (std::vector{Result{Result::Outcome::unanswered, {false, false, "0"}}}));
    for (const auto& query : {QueryOutcome{Kind::notSent, 0, reply},
                              {Kind::expiredInQueue, 0, reply},
                              {Kind::sent, kPortSendTimeout, reply}})
        EXPECT_EQ(send(query),
                  (std::vector{Result{Result::Outcome::notSent, {false, false, "0"}}}));
}

TEST(LockScreenHelloClient, AHelloThatDoesNotEncodeIsLoggedAndNotSent) {
    RecordingLog log;
    LockScreenAddOnHello hello = kHello;
    hello.macOSVersion = "\xFF";
    int ends = 0;
    sendLockScreenHello(
        hello, [](auto&&...) { FAIL() << "was sent"; }, Logger{log.sink(), "QuorvaneKit", "test"},
        [&](const auto& ended) { ends += ended == LockScreenHelloResult{}; });
    EXPECT_EQ(log.take(), Lines{"Lock-screen hello not sent: it did not encode"});
    EXPECT_EQ(ends, 1);
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
    for (const seconds age : {seconds{150}, seconds{-150}})
        EXPECT_EQ(status("1.0", true, age), LockScreenAddOnStatus{LockScreenAddOnConnected{"1.0"}});
    for (const seconds age : {seconds{151}, seconds{-151}})
        EXPECT_EQ(status("1.0.1", true, age),
                  (LockScreenAddOnStatus{LockScreenAddOnNotConnected{"1.0.1", now - age}}));
    EXPECT_EQ(status("9.0.0", false, seconds{0}), waiting);
    EXPECT_EQ(status("0.9.9", true, seconds{500}), waiting);
}

TEST(LockScreenAddOnStatus, VersionsCompareNumberByNumber) {
    using Versions = std::pair<const char*, const char*>;
    for (const auto& [older, newer] :
         {Versions{"1.9.9", "1.10.0"}, Versions{"1.0.0", "1.0.0.1"}, Versions{"", "0.0.1"},
          Versions{"x", "1"}, Versions{"0.99999999999999999999", "1"},
          Versions{"2.0", "99999999999999999999"}, Versions{".9", "1"}}) {
        EXPECT_TRUE(isOlderVersion(older, newer)) << older;
        EXPECT_FALSE(isOlderVersion(newer, older)) << older;
    }
    EXPECT_FALSE(isOlderVersion("1", "1.0.0") || isOlderVersion("1.0.0", "1"));
}

const LockScreenAddOnSighting kSighting{"1.2.3", "26.1.0", true, ManualClock::kStart, "A"};

TEST(SharedDefaults, KeepsTheLockScreensValuesUnderTheirKeys) {
    MemoryDefaults memory;
    SharedDefaults defaults{memory.table()};
    EXPECT_TRUE(defaults.setLockScreenEnabled(true));
    EXPECT_TRUE(defaults.setLockScreenPendingRemoval(LockScreenPendingRemoval{"A"}));
    EXPECT_TRUE(defaults.setLockScreenAddOnLastSeen(kSighting));
    EXPECT_EQ(memory.synchronizations, 3);
    EXPECT_TRUE(defaults.lockScreenEnabled());
    EXPECT_EQ(defaults.lockScreenPendingRemoval(), LockScreenPendingRemoval{"A"});
    LockScreenAddOnSighting unwritable = kSighting;
    unwritable.addOnVersion = "\xFF";
    EXPECT_TRUE(defaults.setLockScreenAddOnLastSeen(unwritable));
    EXPECT_EQ(defaults.lockScreenAddOnLastSeen(), kSighting);
    EXPECT_EQ(memory.values.erase("lockScreenAddOnLastSeen"), 1U);
    EXPECT_EQ(memory.values,
              (PropertyDictionary{{"lockScreenEnabled", {true}},
                                  {"lockScreenRemovalRequested", {true}},
                                  {"lockScreenRemovalTargetInstallID", {std::string{"A"}}}}));
    // A removal without a target must not inherit the previous one's target.
    EXPECT_TRUE(defaults.setLockScreenPendingRemoval(LockScreenPendingRemoval{}));
    EXPECT_EQ(defaults.lockScreenPendingRemoval(), LockScreenPendingRemoval{});
    EXPECT_TRUE(defaults.setLockScreenPendingRemoval(LockScreenPendingRemoval{"B"}));
    EXPECT_TRUE(defaults.setLockScreenPendingRemoval({}));
    EXPECT_TRUE(defaults.setLockScreenAddOnLastSeen({}));
    EXPECT_EQ(memory.values, (PropertyDictionary{{"lockScreenEnabled", {true}}}));
}

TEST(SharedDefaults, ReadsDefaultsWithoutASuiteAndForValuesOfOtherTypes) {
    MemoryDefaults memory;
    memory.values = {{"lockScreenEnabled", PropertyValue{std::int64_t{1}}},
                     {"lockScreenRemovalRequested", PropertyValue{std::string{"true"}}},
                     {"lockScreenAddOnLastSeen", PropertyValue{copyOf(bytesOf("{}"))}}};
    SharedDefaults other{memory.table()};
    SharedDefaults absent{std::nullopt};
    EXPECT_TRUE(absent.setLockScreenEnabled(true));
    EXPECT_TRUE(absent.setLockScreenPendingRemoval(LockScreenPendingRemoval{"A"}));
    EXPECT_TRUE(absent.setLockScreenAddOnLastSeen(kSighting));
    for (const SharedDefaults* defaults : {&other, &absent}) {
        EXPECT_FALSE(defaults->lockScreenEnabled());
        EXPECT_EQ(defaults->lockScreenPendingRemoval(), std::nullopt);
        EXPECT_EQ(defaults->lockScreenAddOnLastSeen(), std::nullopt);
    }
    memory.values["lockScreenRemovalRequested"] = PropertyValue{true};
    memory.values["lockScreenRemovalTargetInstallID"] = PropertyValue{std::int64_t{7}};
    EXPECT_EQ(other.lockScreenPendingRemoval(), LockScreenPendingRemoval{});
}

TEST(MessagePortSecret, TheFirstWriterWinsAndEveryFailureIsLogged) {
    constexpr char kFile[] = "/container/ipc-secret";
    const Bytes own(32, std::byte{5});
    const Bytes other(32, std::byte{7});
    int randomStatus = 0;
    MemoryFileStore store;
    RecordingLog log;
    const auto make = [&] {
        const FillRandom fillRandom = [&](std::span<std::byte> place) -> std::expected<void, int> {
            if (randomStatus != 0) return std::unexpected{randomStatus};
            std::ranges::copy(own, place.begin());
            return {};
        };
        return MessagePortSecret::make(fillRandom, store.table(), log.sink());
    };
    EXPECT_FALSE(MessagePortSecret::read(store.table()));
    EXPECT_EQ(make(), own);
    EXPECT_EQ(MessagePortSecret::read(store.table()), own);
    const Bytes tooLong(33, std::byte{1});  // its users check the length
    store.files[kFile] = tooLong;
    EXPECT_EQ(MessagePortSecret::read(store.table()), tooLong);
    EXPECT_EQ(make(), own) << "a secret that no client can use is replaced";
    store.files.clear();
    store.beforeWrite = [&] { store.files[kFile] = other; };
    EXPECT_EQ(make(), other);
    EXPECT_EQ(store.files.at(kFile), other);
    EXPECT_TRUE(log.lines().empty());

    store.writeFailure = "disk full";
    EXPECT_FALSE(make());
    store.container.reset();
    EXPECT_FALSE(make());
    EXPECT_FALSE(MessagePortSecret::read(store.table()));
    randomStatus = -50;
    EXPECT_FALSE(make());
    EXPECT_EQ(log.take(), (Lines{"Failed to write IPC secret: disk full",
                                 "App Group container unavailable; cannot persist IPC secret",
                                 "Failed to generate IPC secret (SecRandomCopyBytes status -50)"}));
}

}  // namespace
}  // namespace quorvane

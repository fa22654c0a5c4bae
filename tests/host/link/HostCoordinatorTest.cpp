#include "host/link/HostCoordinator.hpp"

#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "tests/support/FakeNotices.hpp"
#include "tests/support/ManualClock.hpp"
#include "tests/support/ManualMainThread.hpp"
#include "tests/support/MemoryDefaults.hpp"
#include "tests/support/MemoryFileStore.hpp"
#include "tests/support/MemoryPorts.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

const std::string kMainPort{kMessagePortBaseName};

struct FakePlayer : PlayerSource {
    PlayerSnapshot snapshot() const override { return value; }
    bool perform(QuorvaneAction action) override { return hear(std::string{actionName(action)}); }
    bool setVolume(std::int64_t v) override { return hear("volume " + std::to_string(v)); }
    bool setRating(std::int64_t v) override { return hear("rating " + std::to_string(v)); }
    void refresh() override { heard.push_back("refresh"); }

    bool hear(const std::string& command) { return heard.push_back(command), obeys; }

    PlayerSnapshot value;
    std::vector<std::string> heard;
    bool obeys = true;
};

// A queue whose only action runs on its own thread. The destructor waits for its end.
struct ThreadQueue : SerialQueue {
    bool async(std::function<void()> action) override {
        result = std::async(std::launch::async, std::move(action));
        return true;
    }
    std::future<void> result;
};

class HostCoordinatorTest : public testing::Test {
protected:
    HostCoordinatorTest() {
        auto owned = std::make_unique<FakePlayer>();
        player = owned.get();
        player->value.state.track = XPCTrack{.title = "Title", .artist = "Artist"};
        host.emplace(HostCoordinator::Services{
                         .log = log.sink(),
                         .openPort = ports.openPort(),
                         .nameCurrentThread = {},
                         .files = store.table(),
                         .fillRandom = [](auto) { return std::expected<void, int>{}; },
                         .mainThread = main.mainThread(),
                         .makeSerialQueue =
                             [](const std::string&) { return std::make_unique<ThreadQueue>(); },
                         .clock = clock.clock(),
                         .wallClock = clock.wallClock(),
                         .darwinNotices = notices.darwin(),
                         .distributedNotices = notices.distributed(),
                         .sharedSuite = defaults.table()},
                     std::move(owned));
        for (const char* notice :
             {"playerStateChanged", "lockScreenConfigurationChanged", "mainAppWillTerminate"})
            observations.push_back(
                notices.darwin().observe(std::string{"example.quillon.Quorvane."} + notice,
                                         [this, notice] { heardNotices.push_back(notice); }));
    }

    // Returns when the host serves and has announced it.
    void serve() {
        EXPECT_TRUE(host->start());
        waitUntil([this] { return host->isServing(); });
        clock.advance(1s);
    }
    void waitUntil(const std::function<bool()>& condition) {
        while (!condition())
            if (main.run() == 0) std::this_thread::yield();
    }
    Bytes request(std::string_view payload = {}) {
        return framed(bytesOf(payload), store.files.at("/container/ipc-secret"));
    }

    // An absent reply body reads as an empty one.
    Bytes ask(const std::string& port, std::int32_t messageID, const Bytes& body) {
        PortReply reply = ports.ask(port, messageID, body);
        EXPECT_EQ(reply.status, kPortSuccess);
        return std::move(reply.body).value_or(Bytes{});
    }
    // The main thread answers a query while the port's thread waits.
    LockScreenAddOnConfiguration hello(std::string_view text) {
        auto answer = std::async(std::launch::async, [this, body = request(text)] {
            return ask(queryPortName(kMessagePortBaseName, 2), 14, body);
        });
        waitUntil([&] { return answer.wait_for(0s) == std::future_status::ready; });
        return XPCCodableHelpers::decode<LockScreenAddOnConfiguration>(answer.get()).value();
    }
    LockScreenAddOnConfiguration hello(const LockScreenAddOnHello& hello) {
        return this->hello(textOf(*XPCCodableHelpers::encode(hello)));
    }
    QuorvanePlayerState state() {
        return XPCCodableHelpers::decode<QuorvanePlayerState>(ask(kMainPort, 1, request())).value();
    }
    std::vector<std::string> takeHeard() { return std::exchange(player->heard, {}); }
    std::vector<std::string> takeNotices() { return std::exchange(heardNotices, {}); }

    using Texts = std::vector<std::string>;
    RecordingLog log;
    MemoryPorts ports;
    ManualClock clock;
    ManualMainThread main;
    FakeNotices notices;
    MemoryDefaults defaults{.values = {{"lockScreenEnabled", {true}}}};
    MemoryFileStore store;
    Texts heardNotices;
    std::vector<Handle> observations;
    FakePlayer* player = nullptr;
    std::optional<HostCoordinator> host;
};

TEST_F(HostCoordinatorTest, AnswersWithoutTheMainThreadAndCommandsThePlayerThere) {
    player->value.state.playerState = XPCPlayerState::playing;
    player->value.anchor = {.seconds = 40, .at = clock.clock().now(), .isPlaying = true};
    serve();
    clock.advance(12s);
    EXPECT_EQ(state().timestamp, ManualClock::kStart + 13s);
    EXPECT_DOUBLE_EQ(state().playerPosition, 53);
    ask(kMainPort, 2, request("\x01"));
    ask(kMainPort, 2, request("\x03"));  // not an action
    ask(kMainPort, 3, request("\x40"));
    ask(kMainPort, 4, request("\xFF"));
    EXPECT_TRUE(takeHeard().empty());
    main.run();
    EXPECT_EQ(takeHeard(), (Texts{"refresh", "refresh", "nextTrack", "volume 64", "rating 255"}));
    takeNotices();
    player->obeys = false;
    for (const char* drag : {"\x01", "\x02", "\x03"}) ask(kMainPort, 3, request(drag));
    main.run();
    clock.advance(50ms);
    EXPECT_EQ(takeNotices(), Texts{"playerStateChanged"})
        << "makes the card request the true state";
    ask(kMainPort, 2, request("\x01"));
    host.reset();
    EXPECT_GT(main.run(), 0) << "commands that arrive after the end are dropped";
}

TEST_F(HostCoordinatorTest, AnnouncesNewsOnceAndOnlyNews) {
    serve();
    EXPECT_EQ(takeNotices(),
              (Texts{"playerStateChanged", "lockScreenConfigurationChanged", "playerStateChanged"}))
        << "the add-on shall connect again; the player's first state";
    for (int i = 0; i < 5; ++i) {
        player->value.state.volume += 1;
        player->onChanged();
        EXPECT_EQ(state().volume, player->value.state.volume) << "answered at once";
        EXPECT_TRUE(takeNotices().empty());
        clock.advance(10ms);
    }
    EXPECT_EQ(takeNotices(), Texts{"playerStateChanged"});
    player->onChanged();
    clock.advance(1s);
    EXPECT_TRUE(takeNotices().empty());
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

TEST_F(HostCoordinatorTest, SaysWhenItComesAndGoes) {
    int timesServing = 0;
    host->onServing = [&] { ++timesServing; };
    auto other = ports.openPort()(kMainPort, {});
    EXPECT_TRUE(host->start());
    waitUntil([this] {
        return log.contains("Message port " + kMainPort + " busy (attempt 1); another instance " +
                            "holds it — retrying until it frees");
    });
    EXPECT_TRUE(store.files.empty()) << "the other host makes the secret";
    EXPECT_FALSE(ports.connectPort()(queryPortName(kMessagePortBaseName, 0))) << "all or none";
    other.reset();
    waitUntil([&] { return timesServing == 1; });
    host->stop();
    takeNotices();

    host->start();
    for (std::size_t i = 0; i < kQueryPortCount; ++i)
        while (!ports.connectPort()(queryPortName(kMessagePortBaseName, i)))
            std::this_thread::yield();
    host->stop();
    main.run();
    EXPECT_EQ(timesServing, 1) << "the ports opened after the end";
    EXPECT_TRUE(takeNotices().empty());
}

TEST_F(HostCoordinatorTest, AnswersHellosAndDeliversARemoval) {
    serve();
    SharedDefaults stored{defaults.table()};
    for (const char* text : {"", "{\"protocolVersion\":1}"})
        EXPECT_EQ(hello(text), (LockScreenAddOnConfiguration{false, false, "1.0.0"}));
    EXPECT_TRUE(log.contains("Lock-screen hello undecodable: answering locked"));
    EXPECT_FALSE(stored.lockScreenAddOnLastSeen());

    LockScreenAddOnHello speaking{.protocolVersion = 1,
                                  .addOnVersion = "1.2.3",
                                  .macOSVersion = "26.1.0",
                                  .supportsThisMacOS = true,
                                  .installID = "A",
                                  .supersedesRemoval = false};
    EXPECT_EQ(hello(speaking), (LockScreenAddOnConfiguration{true, false, "1.0.0"}));
    EXPECT_EQ(stored.lockScreenAddOnLastSeen(), sightingOf(speaking, ManualClock::kStart + 1s));

    int delivered = 0;
    host->onRemovalDelivered = [&] { ++delivered; };
    ASSERT_TRUE(stored.setLockScreenPendingRemoval(LockScreenPendingRemoval{"A"}));
    EXPECT_EQ(hello(speaking), (LockScreenAddOnConfiguration{false, true, "1.0.0"}))
        << "a removal turns the card off";
    EXPECT_TRUE(stored.lockScreenPendingRemoval());
    speaking.installID = "B";
    EXPECT_EQ(hello(speaking), (LockScreenAddOnConfiguration{true, false, "1.0.0"}));
    EXPECT_FALSE(stored.lockScreenPendingRemoval());
    EXPECT_EQ(delivered, 1);
    defaults.values["lockScreenEnabled"] = {false};
    EXPECT_EQ(hello(speaking), (LockScreenAddOnConfiguration{false, false, "1.0.0"}));
}

}  // namespace
}  // namespace quorvane

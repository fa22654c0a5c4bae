#include "host/link/HostCoordinator.hpp"

#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "QuorvaneKit/link/MessagePortSecret.hpp"
#include "QuorvaneKit/link/MessagePortWire.hpp"
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
const std::string kQueryPort = queryPortName(kMessagePortBaseName, 2);

struct FakePlayer : PlayerSource {
    PlayerSnapshot snapshot() const override { return value; }
    bool perform(QuorvaneAction action) override { return hear(std::string{actionName(action)}); }
    bool setVolume(std::int64_t v) override { return hear("volume " + std::to_string(v)); }
    bool setRating(std::int64_t v) override { return hear("rating " + std::to_string(v)); }
    void refresh() override { heard.push_back("refresh"); }

    bool hear(std::string command) {
        heard.push_back(std::move(command));
        return obeys;
    }

    PlayerSnapshot value;
    std::vector<std::string> heard;
    bool obeys = true;
};

// One thread per queue, like the real ones.
struct ThreadQueue : SerialQueue {
    ~ThreadQueue() override {
        if (thread.joinable()) thread.join();
    }
    bool async(std::function<void()> action) override {
        thread = std::thread{std::move(action)};
        return true;
    }
    std::thread thread;
};

class HostCoordinatorTest : public testing::Test {
protected:
    HostCoordinatorTest() {
        auto owned = std::make_unique<FakePlayer>();
        player = owned.get();
        player->value.state.track = XPCTrack{.title = "Title", .artist = "Artist"};
        host.emplace(
            HostCoordinator::Services{
                .log = log.sink(),
                .openPort = ports.openPort(),
                .nameCurrentThread = {},
                .files = store.table(),
                .fillRandom = [this](std::span<std::byte> bytes) -> std::expected<void, int> {
                    ++secretsMade;
                    if (!hasRandom) return std::unexpected{7};
                    std::ranges::fill(bytes, std::byte{0x5A});
                    return {};
                },
                .mainThread = main.mainThread(),
                .makeSerialQueue =
                    [](const std::string&) { return std::make_unique<ThreadQueue>(); },
                .clock = clock.clock(),
                .wallClock = clock.wallClock(),
                .darwinNotices = notices.darwin(),
                .sharedSuite = defaults.table()},
            std::move(owned));
        for (const char* notice :
             {"playerStateChanged", "lockScreenConfigurationChanged", "mainAppWillTerminate"})
            observations.push_back(
                notices.darwin().observe(std::string{"example.quillon.Quorvane."} + notice,
                                         [this, notice] { heardNotices.push_back(notice); }));
    }

    void serve() {
        EXPECT_TRUE(host->start());
        waitUntilServing();
        heardNotices.clear();
    }
    void waitUntilServing() {
        while (!host->isServing())
            if (main.run() == 0) std::this_thread::yield();
    }
    Bytes request(std::string_view payload = {}) { return framed(bytesOf(payload), secret()); }
    Bytes secret() { return store.files.at(kSecretFile); }

    // An absent reply body reads as an empty one.
    Bytes ask(const std::string& port, std::int32_t messageID, const Bytes& body) {
        PortReply reply = ports.ask(port, messageID, body);
        EXPECT_EQ(reply.status, kPortSuccess);
        return std::move(reply.body).value_or(Bytes{});
    }
    // The main thread answers a query while the port's thread waits.
    Bytes query(std::int32_t messageID, const Bytes& body) {
        auto answer =
            std::async(std::launch::async, [&] { return ask(kQueryPort, messageID, body); });
        while (answer.wait_for(0s) != std::future_status::ready)
            if (main.run() == 0) std::this_thread::yield();
        return answer.get();
    }
    LockScreenAddOnConfiguration hello(const LockScreenAddOnHello& hello) {
        const Bytes payload = *XPCCodableHelpers::encode(hello);
        return configuration(query(14, request(textOf(payload))));
    }
    static LockScreenAddOnConfiguration configuration(Bytes reply) {
        const auto decoded =
            XPCCodableHelpers::decode<LockScreenAddOnConfiguration>(std::move(reply));
        EXPECT_TRUE(decoded);
        return decoded.value_or(LockScreenAddOnConfiguration{});
    }
    QuorvanePlayerState state() {
        auto decoded = XPCCodableHelpers::decode<QuorvanePlayerState>(ask(kMainPort, 1, request()));
        EXPECT_TRUE(decoded);
        return decoded.value_or(QuorvanePlayerState{});
    }
    void change() { player->onChanged(); }
    std::vector<std::string> takeHeard() { return std::exchange(player->heard, {}); }
    std::vector<std::string> takeNotices() { return std::exchange(heardNotices, {}); }

    using Texts = std::vector<std::string>;
    static constexpr char kSecretFile[] = "/container/ipc-secret";
    RecordingLog log;
    MemoryPorts ports;
    ManualClock clock;
    ManualMainThread main;
    FakeNotices notices;
    MemoryDefaults defaults;
    MemoryFileStore store;
    int secretsMade = 0;
    bool hasRandom = true;
    Texts heardNotices;
    std::vector<Handle> observations;
    FakePlayer* player = nullptr;
    std::optional<HostCoordinator> host;
};

LockScreenAddOnConfiguration answered(bool isEnabled, bool removalRequested) {
    return {isEnabled, removalRequested, "1.0.0"};
}

TEST_F(HostCoordinatorTest, MakesOneSecretAndKeepsIt) {
    serve();
    EXPECT_EQ(secret(), Bytes(32, std::byte{0x5A}));
    host->stop();
    serve();
    EXPECT_EQ(secretsMade, 1);
    host->stop();
    store.files[kSecretFile] = Bytes(31);
    serve();
    EXPECT_EQ(secretsMade, 2) << "a secret of the wrong length is replaced";
    EXPECT_TRUE(host->hasSecret());
}

TEST_F(HostCoordinatorTest, OnlyTheHolderOfTheMainPortServesAndMakesASecret) {
    auto other = ports.openPort()(kMainPort, [](std::int32_t, ByteView) { return Bytes{}; });
    EXPECT_TRUE(host->start());
    for (std::size_t i = 0; i < kQueryPortCount; ++i) {
        const std::string taken = queryPortName(kMessagePortBaseName, i);
        while (!log.contains("Message port " + taken + " busy (attempt 1); another instance " +
                             "holds it — retrying until it frees"))
            std::this_thread::yield();
    }
    EXPECT_TRUE(store.files.empty());
    store.files[kSecretFile] = Bytes(32, std::byte{1});  // made by the other host
    other.reset();
    waitUntilServing();
    EXPECT_EQ(secretsMade, 0);
    EXPECT_FALSE(ask(kMainPort, 1, request()).empty());
}

TEST_F(HostCoordinatorTest, WithoutASecretEverythingIsDropped) {
    hasRandom = false;
    EXPECT_TRUE(host->start());
    waitUntilServing();
    EXPECT_FALSE(host->hasSecret());
    EXPECT_TRUE(ask(kMainPort, 1, Bytes(32)).empty());
    EXPECT_TRUE(log.contains("Failed to generate IPC secret (SecRandomCopyBytes status 7)"));
}

TEST_F(HostCoordinatorTest, HandsOutTheStateOfTheMoment) {
    player->value.state.playerState = XPCPlayerState::playing;
    player->value.anchor = {.seconds = 40, .at = clock.clock().now(), .isPlaying = true};
    serve();
    clock.advance(12s);
    const auto answer = state();
    EXPECT_EQ(answer.timestamp, ManualClock::kStart + 12s);
    EXPECT_DOUBLE_EQ(answer.playerPosition, 52) << "answered without the main thread";
    EXPECT_TRUE(takeHeard().empty());
    main.run();
    EXPECT_EQ(takeHeard(), Texts{"refresh"});
}

TEST_F(HostCoordinatorTest, CommandsReachThePlayerOnTheMainThread) {
    serve();
    ask(kMainPort, 2, request("\x01"));
    ask(kMainPort, 2, request("\x03"));  // not an action
    ask(kMainPort, 3, request("\x40"));
    ask(kMainPort, 4, request("\xFF"));
    EXPECT_TRUE(takeHeard().empty());
    main.run();
    EXPECT_EQ(takeHeard(), (Texts{"nextTrack", "volume 64", "rating 255"}));
    clock.advance(1s);
    takeNotices();
    player->obeys = false;
    for (const int drag : {1, 2, 3}) ask(kMainPort, 3, request(std::string(1, char(drag))));
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
    clock.advance(1s);
    takeNotices();
    for (int i = 0; i < 5; ++i) {
        player->value.state.volume += 1;
        change();
        clock.advance(5ms);
    }
    EXPECT_TRUE(takeNotices().empty());
    EXPECT_EQ(state().volume, 5) << "answered at once";
    clock.advance(1s);
    EXPECT_EQ(takeNotices(), Texts{"playerStateChanged"});
    change();
    clock.advance(1s);
    EXPECT_TRUE(takeNotices().empty());
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

TEST_F(HostCoordinatorTest, SaysWhenItComesAndGoes) {
    bool isServing = false;
    host->onServing = [&] { isServing = true; };
    host->start();
    waitUntilServing();
    EXPECT_TRUE(isServing);
    EXPECT_EQ(takeNotices(), (Texts{"playerStateChanged", "lockScreenConfigurationChanged"}));
    clock.advance(1s);
    takeNotices();
    host->stop();
    EXPECT_EQ(takeNotices(), Texts{"mainAppWillTerminate"});
    EXPECT_FALSE(ports.connectPort()(kMainPort));
    host->stop();
    EXPECT_TRUE(takeNotices().empty());

    host->start();
    for (std::size_t i = 0; i < kQueryPortCount; ++i)
        while (!ports.connectPort()(queryPortName(kMessagePortBaseName, i)))
            std::this_thread::yield();
    while (!ports.connectPort()(kMainPort)) std::this_thread::yield();
    host->stop();
    main.run();
    EXPECT_FALSE(host->isServing()) << "the ports opened after the end";
    EXPECT_TRUE(takeNotices().empty());
}

TEST_F(HostCoordinatorTest, AnswersHelloAndRemembersIt) {
    defaults.values["lockScreenEnabled"] = {true};
    serve();
    clock.advance(3s);
    const LockScreenAddOnHello fromA{.protocolVersion = 1,
                                     .addOnVersion = "1.2.3",
                                     .macOSVersion = "26.1.0",
                                     .supportsThisMacOS = true,
                                     .installID = "A",
                                     .supersedesRemoval = false};
    EXPECT_EQ(hello(fromA), answered(true, false));
    const SharedDefaults stored{defaults.table()};
    EXPECT_EQ(stored.lockScreenAddOnLastSeen(), sightingOf(fromA, ManualClock::kStart + 3s));
    defaults.values["lockScreenEnabled"] = {false};
    EXPECT_EQ(hello(fromA), answered(false, false));
}

TEST_F(HostCoordinatorTest, DeliversARemovalOrClearsOneThatIsVoid) {
    defaults.values["lockScreenEnabled"] = {true};
    serve();
    SharedDefaults stored{defaults.table()};
    ASSERT_TRUE(stored.setLockScreenPendingRemoval(LockScreenPendingRemoval{"A"}));
    int delivered = 0;
    host->onRemovalDelivered = [&] { ++delivered; };
    LockScreenAddOnHello speaking;
    speaking.installID = "A";
    EXPECT_EQ(hello(speaking), answered(false, true)) << "a removal turns the card off";
    EXPECT_EQ(delivered, 1);
    EXPECT_TRUE(stored.lockScreenPendingRemoval());
    speaking.installID = "B";
    EXPECT_EQ(hello(speaking), answered(true, false));
    EXPECT_EQ(delivered, 1);
    EXPECT_FALSE(stored.lockScreenPendingRemoval());
}

TEST_F(HostCoordinatorTest, AHelloItCannotReadKeepsTheCardOff) {
    defaults.values["lockScreenEnabled"] = {true};
    serve();
    for (const char* text : {"", "{", "{\"protocolVersion\":1}"}) {
        log.take();
        EXPECT_EQ(configuration(query(14, request(text))), answered(false, false));
        EXPECT_TRUE(log.contains("Lock-screen hello undecodable: answering locked"));
    }
    EXPECT_FALSE(defaults.values.contains("lockScreenAddOnLastSeen"));
}

}  // namespace
}  // namespace quorvane

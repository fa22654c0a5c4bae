// The client's state: connecting, state requests, commands, and what may come back in while a send
// waits.
#include <gtest/gtest.h>

#include "tests/QuorvaneKit/link/LinkFixture.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using MessagePortClientTest = LinkFixture;

constexpr char kReceived[] =
    "State received - track: none -> L\xC3\xADnea \"A\", position: 12.250000s";

TEST_F(MessagePortClientTest, StartConnectsAsksForTheStateAndListens) {
    serveMain();
    std::vector<bool> connections;
    const Handle observation = client->isConnected().subscribe(
        [&] { connections.push_back(client->isConnected().get()); });
    client->start();
    EXPECT_EQ(log.lines().back().redacted,
              "State received - track: <private> -> <private>, position: 12.250000s");
    EXPECT_EQ(log.take(),
              (Lines{"Starting message port client", "Connected to message port", kReceived}));
    EXPECT_EQ(client->playerState(), sampleState());
    EXPECT_EQ(client->portAttempts(), 1);
    ASSERT_EQ(ports.sent.size(), 1U);
    EXPECT_EQ(ports.sent[0].messageID, 1);
    EXPECT_EQ(ports.sent[0].body, secret);
    EXPECT_EQ(ports.sent[0].sendTimeout, 1s);
    EXPECT_EQ(ports.sent[0].receiveTimeout, 1s);
    EXPECT_TRUE(ports.sent[0].awaitsReply);

    client->start();  // again: a new port, no second observer, and no change of "connected"
    EXPECT_EQ(notices.deliver(kStateChanged), 1);
    EXPECT_EQ(ports.sent.size(), 3U);
    EXPECT_EQ(connections, (std::vector{true}));
    log.take();
    client->stop();
    EXPECT_EQ(log.take(), Lines{"Stopping message port client"});
    EXPECT_EQ(connections, (std::vector{true, false}));
    EXPECT_EQ(notices.deliver(kStateChanged), 0);
}

TEST_F(MessagePortClientTest, ANoticeWhileDisconnectedTriesToConnect) {
    client->start();
    EXPECT_EQ(log.take(), (Lines{"Starting message port client", "Message port not available"}));
    client->requestStateUpdate();
    EXPECT_EQ(log.take(), Lines{"requestStateUpdate: no remote port"});
    client->playPause();
    EXPECT_EQ(log.take(), Lines{"Cannot send message: not connected"});
    serveMain();
    notices.deliver(kStateChanged);
    EXPECT_EQ(log.take(), (Lines{"Darwin notification received: playerStateChanged",
                                 "Not connected, cannot request state update",
                                 "Connected to message port", kReceived}));
    EXPECT_EQ(client->portAttempts(), 2);
    notices.deliver(kStateChanged);
    EXPECT_EQ(client->portAttempts(), 2);
    EXPECT_EQ(ports.sent.size(), 2U);
}

TEST_F(MessagePortClientTest, ALocalResponderKeepsItFromEverConnecting) {
    serveMain();
    client = makeClient(MessagePortLocalResponder{});
    client->start();
    EXPECT_EQ(log.take(), Lines{"Message port client answers locally; not connecting"});
    client->connect();
    EXPECT_EQ(client->portAttempts(), 1);
    EXPECT_FALSE(client->isConnected().get());
    EXPECT_EQ(notices.deliver(kStateChanged), 0);
    int refused = 0;
    client->sendQuery(MessageType::lockScreenHello, {}, 1s,
                      [&](QueryOutcome outcome) { refused += outcome == QueryOutcome{}; });
    EXPECT_EQ(log.take(), (Lines{"sendQuery: refused, the client answers locally"}));
    mainThread.run();
    EXPECT_EQ(refused, 1);
    EXPECT_TRUE(ports.sent.empty());
}

TEST_F(MessagePortClientTest, RepliesThatDoNotDecodeChangeNothing) {
    int calls = 0;
    connect();
    client->onStateChanged = [&](const QuorvanePlayerState&) { ++calls; };
    for (const std::string_view reply : {"", "{", "[]", "{\"playerState\":4}"}) {
        state = copyOf(bytesOf(reply));
        client->requestStateUpdate();
    }
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(client->playerState(), sampleState());
    EXPECT_TRUE(log.take().empty());
    EXPECT_TRUE(client->isConnected().get());
    state = copyOf(bytesOf(kSmallestText));
    client->requestStateUpdate();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(log.take(),
              (Lines{"State received - track: L\xC3\xADnea \"A\" -> none, position: 0.000000s"}));
}

TEST_F(MessagePortClientTest, EveryFailingStatusDisconnects) {
    for (std::int32_t status = kPortSendTimeout; status >= kPortBecameInvalid; --status) {
        const std::string number = std::to_string(status);
        for (const bool isCommand : {false, true}) {
            connect();
            ports.failures[kMainPort] = status;
            isCommand ? client->nextTrack() : client->requestStateUpdate();
            EXPECT_EQ(log.take(), (Lines{(isCommand ? "Failed to send message, status: "
                                                    : "Message port disconnected, status: ") +
                                         number}));
            EXPECT_FALSE(client->isConnected().get());
            ports.failures.clear();
        }
    }
}

TEST_F(MessagePortClientTest, WithoutAProperSecretNothingIsSent) {
    connect();
    const std::pair<std::optional<Bytes>, std::string> cases[] = {
        {std::nullopt,
         "IPC connection secret unavailable (App Group container unreadable); cannot send to main "
         "app"},
        {Bytes(31), "IPC connection secret malformed; cannot send"},
        {Bytes(33), "IPC connection secret malformed; cannot send"},
        {Bytes{}, "IPC connection secret malformed; cannot send"}};
    for (const auto& [bytes, line] : cases) {
        secret = bytes;
        client->requestStateUpdate();
        client->setVolume(1);
        EXPECT_EQ(log.take(), (Lines{line, line}));
    }
    EXPECT_TRUE(ports.sent.empty());
    EXPECT_TRUE(client->isConnected().get());
}

TEST_F(MessagePortClientTest, CommandsAreOneByteAndAwaitNothing) {
    connect();
    client->playPause();
    client->nextTrack();
    client->previousTrack();
    client->increaseVolume();
    client->decreaseVolume();
    client->toggleMute();
    client->toggleLove();
    client->toggleDislike();
    client->increaseRating();
    client->decreaseRating();
    client->removeRating();
    client->toggleShuffle();
    client->toggleRepeat();
    client->activatePlayer();
    client->switchPlayer();
    EXPECT_EQ(commandBytes(),
              (std::vector{0, 1, 2, 10, 11, 12, 20, 21, 22, 23, 24, 30, 31, 40, 41}));
    for (const auto& sent : ports.sent) {
        EXPECT_EQ(sent.messageID, 2);
        EXPECT_EQ(sent.body.size(), 33U);
        EXPECT_EQ(sent.sendTimeout, 1s);
        EXPECT_EQ(sent.receiveTimeout, 0s);
        EXPECT_FALSE(sent.awaitsReply);
    }
    ports.sent.clear();
    for (const std::int64_t value : {std::int64_t{-4}, INT64_MIN, std::int64_t{0}, std::int64_t{64},
                                     std::int64_t{255}, std::int64_t{300}, INT64_MAX}) {
        client->setVolume(value);
        client->setRating(value);
    }
    EXPECT_EQ(commandBytes(),
              (std::vector{0, 0, 0, 0, 0, 0, 64, 64, 255, 255, 255, 255, 255, 255}));
    EXPECT_EQ(ports.sent[0].messageID, 3);
    EXPECT_EQ(ports.sent[1].messageID, 4);
}

TEST_F(MessagePortClientTest, DropsItsPortBeforeItAsksForTheNext) {
    connect();
    mainPort = {};
    client->connect();
    EXPECT_FALSE(client->isConnected().get());
    client->toggleLove();
    EXPECT_EQ(log.take(),
              (Lines{"Message port not available", "Cannot send message: not connected"}));
}

TEST_F(MessagePortClientTest, AReplysMemoryIsKeptOnlyWhilePolling) {
    connect();
    client->requestStateUpdate();
    client->setPolling(true);
    for (int i = 0; i < 3; ++i) client->requestStateUpdate();
    client->setPolling(false);
    client->requestStateUpdate();
    std::vector<bool> isMemoryGiven;
    for (const auto& sent : ports.sent) isMemoryGiven.push_back(sent.replyMemory >= state.size());
    EXPECT_EQ(isMemoryGiven, (std::vector<bool>{false, false, true, true, false}));
}

// Each of these happens inside a waiting state request.
TEST_F(MessagePortClientTest, ARequestInsideARequestFollowsLater) {
    connect();
    ports.duringSend = [&] {
        notices.deliver(kStateChanged);
        client->requestStateUpdate();
        client->toggleLove();  // needs no reply: goes out at once
        EXPECT_EQ(ports.sent.size(), 2U);
    };
    client->requestStateUpdate();
    EXPECT_EQ(ports.sent.size(), 2U);
    EXPECT_EQ(mainThread.run(), 1);
    EXPECT_EQ(ports.sent.size(), 3U);
    EXPECT_EQ(mainThread.run(), 0);
    EXPECT_TRUE(client->isConnected().get());
}

TEST_F(MessagePortClientTest, ADisconnectInsideARequestEndsItQuietly) {
    int calls = 0;
    connect();
    client->onStateChanged = [&](const QuorvanePlayerState&) { ++calls; };
    ports.duringSend = [&] { client->disconnect(); };
    client->requestStateUpdate();
    EXPECT_FALSE(client->isConnected().get());
    EXPECT_TRUE(log.take().empty());
    EXPECT_EQ(calls, 0);

    client->connect();  // and the next one is not held up by the one that was cut short
    EXPECT_EQ(calls, 1);
}

TEST_F(MessagePortClientTest, StoppedWhileItStartsItStaysStopped) {
    serveMain();
    ports.duringSend = [&] { client->stop(); };
    client->start();
    EXPECT_FALSE(client->isConnected().get());
    EXPECT_EQ(notices.deliver(kStateChanged), 0);
}

TEST_F(MessagePortClientTest, AFailureOfAnOldPortDoesNotDropTheNewOne) {
    connect();
    ports.duringSend = [&] {
        mainPort.reset();  // the main application dies, and a new one is there at once
        serveMain();
        client->connect();
    };
    client->requestStateUpdate();
    EXPECT_TRUE(client->isConnected().get());
    EXPECT_EQ(log.take(), Lines{"Connected to message port"});
    mainThread.run();
    EXPECT_EQ(log.take().size(), 1U);  // the new port's state
}

TEST_F(MessagePortClientTest, SurvivesItsOwnEndInsideEverythingThatCallsOut) {
    const auto end = [&] { client.reset(); };
    Handle observation;
    const std::function<void()> ends[] = {
        [&] { ports.duringSend = end, client->requestStateUpdate(); },
        [&] { ports.duringSend = end, client->playPause(); },
        [&] {
            client->disconnect();
            ports.duringSend = end;
            client->start();
        },
        [&] {
            client->onStateChanged = [&](const QuorvanePlayerState&) { client.reset(); };
            client->requestStateUpdate();
        },
        [&] {
            client->disconnect();
            observation = client->isConnected().subscribe(end);
            client->start();
        },
        [&] {
            observation = client->isConnected().subscribe(end);
            ports.failures[kMainPort] = kPortBecameInvalid;
            notices.deliver(kStateChanged);
        },
        [&] {
            client->sendQuery(MessageType::historyQuery, {}, 1s, [&](auto) { client.reset(); });
            queues.runAll();
            mainThread.run();
        },
    };
    for (const auto& endInside : ends) {
        client = makeClient();
        connect();
        endInside();
        EXPECT_EQ(client, nullptr) << &endInside - ends;
        EXPECT_EQ(notices.observerCount(), 0U);
        ports.failures.clear();
    }
}

}  // namespace
}  // namespace quorvane

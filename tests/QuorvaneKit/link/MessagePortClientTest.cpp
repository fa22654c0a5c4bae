// The client's state: connecting, state requests, commands, and calls that re-enter while a send
// waits.
#include <gtest/gtest.h>

#include "tests/QuorvaneKit/link/LinkFixture.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using MessagePortClientTest = LinkFixture;

TEST_F(MessagePortClientTest, StartConnectsAsksForTheStateAndListens) {
    serveMain();
    std::vector<bool> connections;
    const Handle observation = client->isConnected().subscribe(
        [&] { connections.push_back(client->isConnected().get()); });
    client->start();
    EXPECT_EQ(log.lines().back().redacted,
              "State received - track: <private> -> <private>, position: 12.250000s");
    EXPECT_EQ(client->playerState(), sampleState());

    client->start();  // again: a new port, no second observer, and no change of "connected"
    EXPECT_EQ(notices.deliver(kStateChanged), 1);
    EXPECT_EQ(ports.sent.size(), 3U);
    log.take();
    client->stop();
    EXPECT_EQ(log.take(), Lines{"Stopping message port client"});
    EXPECT_EQ(connections, (std::vector{true, false}));
    EXPECT_EQ(notices.deliver(kStateChanged), 0);
}

TEST_F(MessagePortClientTest, ANoticeWhileDisconnectedTriesToConnect) {
    client->start();
    client->requestStateUpdate();
    client->playPause();
    serveMain();
    notices.deliver(kStateChanged);
    EXPECT_EQ(log.take(),
              (Lines{"Starting message port client", "Message port not available",
                     "requestStateUpdate: no remote port", "Cannot send message: not connected",
                     "Darwin notification received: playerStateChanged",
                     "Not connected, cannot request state update", "Connected to message port",
                     "State received - track: none -> Línea \"A\", position: 12.250000s"}));
    notices.deliver(kStateChanged);
    EXPECT_EQ(client->portAttempts(), 2);
    EXPECT_EQ(ports.sent.size(), 2U);
}

TEST_F(MessagePortClientTest, ALocalResponderKeepsItFromEverConnecting) {
    serveMain();
    client = makeClient(MessagePortLocalResponder{});
    client->start();
    client->connect();
    EXPECT_EQ(client->portAttempts(), 1);
    EXPECT_FALSE(client->isConnected().get());
    EXPECT_EQ(notices.observerCount(), 0U);
    int refused = 0;
    client->sendQuery(MessageType::lockScreenHello, {}, 1s,
                      [&](QueryOutcome outcome) { refused += outcome == QueryOutcome{}; });
    mainThread.run();
    EXPECT_EQ(refused, 1);
    EXPECT_EQ(log.take(), (Lines{"Message port client answers locally; not connecting",
                                 "sendQuery: refused, the client answers locally"}));
    EXPECT_TRUE(ports.sent.empty());
}

TEST_F(MessagePortClientTest, OnlyAFailingStatusDisconnects) {
    connect();
    for (const std::string_view reply : {"", "{", "[]", "{\"playerState\":4}"}) {
        state = copyOf(bytesOf(reply));
        client->requestStateUpdate();
    }
    EXPECT_EQ(client->playerState(), sampleState());
    EXPECT_TRUE(log.take().empty());
    EXPECT_TRUE(client->isConnected().get());
    for (std::int32_t status = kPortSendTimeout; status >= kPortBecameInvalid; --status)
        for (const bool isCommand : {false, true}) {
            connect();
            ports.failures[kMainPort] = status;
            isCommand ? client->nextTrack() : client->requestStateUpdate();
            EXPECT_EQ(log.take(), (Lines{(isCommand ? "Failed to send message, status: "
                                                    : "Message port disconnected, status: ") +
                                         std::to_string(status)}));
            EXPECT_FALSE(client->isConnected().get());
            ports.failures.clear();
        }
}

TEST_F(MessagePortClientTest, WithoutAProperSecretNothingIsSent) {
    connect();
    for (const auto& bytes : {std::optional<Bytes>{}, {Bytes(31)}, {Bytes(33)}, {Bytes{}}}) {
        secret = bytes;
        const std::string line =
            secret ? "IPC connection secret malformed; cannot send"
                   : "IPC connection secret unavailable (App Group container unreadable); cannot "
                     "send to main app";
        client->requestStateUpdate();
        client->setVolume(1);
        EXPECT_EQ(log.take(), (Lines{line, line}));
    }
    EXPECT_TRUE(ports.sent.empty());
    EXPECT_TRUE(client->isConnected().get());
}

TEST_F(MessagePortClientTest, CommandsAreOneByteAndAwaitNothing) {
    connect();
    using Client = MessagePortClient;
    for (const auto command :
         {&Client::playPause, &Client::nextTrack, &Client::previousTrack, &Client::increaseVolume,
          &Client::decreaseVolume, &Client::toggleMute, &Client::toggleLove, &Client::toggleDislike,
          &Client::increaseRating, &Client::decreaseRating, &Client::removeRating,
          &Client::toggleShuffle, &Client::toggleRepeat, &Client::activatePlayer,
          &Client::switchPlayer})
        ((*client).*command)();
    for (const std::int64_t value : {INT64_MIN, -1L, 0L, 255L, 256L, INT64_MAX}) {
        client->setVolume(value);
        client->setRating(value);
    }
    const int bytes[] = {0,  1, 2, 10, 11, 12, 20, 21,  22,  23,  24,  30,  31, 40,
                         41, 0, 0, 0,  0,  0,  0,  255, 255, 255, 255, 255, 255};
    ASSERT_EQ(ports.sent.size(), std::size(bytes));
    for (std::size_t i = 0; i < ports.sent.size(); ++i) {
        const auto& sent = ports.sent[i];
        EXPECT_EQ(sent.messageID, i < 15 ? 2 : i % 2 == 1 ? 3 : 4);
        EXPECT_EQ(sent.body.size(), 33U);
        EXPECT_EQ(std::to_integer<int>(sent.body.back()), bytes[i]) << i;
        EXPECT_EQ(sent.sendTimeout, 1s);
        EXPECT_EQ(sent.receiveTimeout, 0s);
        EXPECT_FALSE(sent.awaitsReply);
    }
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
    client->connect();  // not delayed by the cancelled request
    EXPECT_EQ(calls, 1);

    ports.duringSend = [&] {  // a failed connection cancels it too
        mainPort.reset();
        client->connect();
    };
    log.take();
    client->requestStateUpdate();
    EXPECT_FALSE(client->isConnected().get());
    EXPECT_EQ(log.take(), Lines{"Message port not available"});

    serveMain();
    ports.duringSend = [&] { client->stop(); };
    client->start();
    EXPECT_FALSE(client->isConnected().get());
    EXPECT_EQ(notices.observerCount(), 0U);
}

TEST_F(MessagePortClientTest, AFailureOfAnOldPortDoesNotDropTheNewOne) {
    connect();
    for (const auto send :
         {&MessagePortClient::requestStateUpdate, &MessagePortClient::playPause}) {
        ports.duringSend = [&] {
            mainPort.reset();  // the main application dies and is replaced at once
            serveMain();
            client->connect();
        };
        ((*client).*send)();
        EXPECT_TRUE(client->isConnected().get());
        mainThread.run();
        EXPECT_EQ(log.take().size(), 2U);  // the connection and its state
    }
}

}  // namespace
}  // namespace quorvane

// Queries: which slot they take, when they expire, and how each of their failures is reported.
#include <gtest/gtest.h>

#include "tests/QuorvaneKit/link/LinkFixture.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using Kind = QueryOutcome::Kind;

const QueryOutcome kTold{Kind::sent, 0, copyOf(bytesOf("told"))};

class MessagePortQueryTest : public LinkFixture {
protected:
    void query(MessageType type = MessageType::lockScreenHello, Duration timeout = 3s) {
        client->sendQuery(type, copyOf(bytesOf("ask")), timeout,
                          [this](QueryOutcome outcome) { outcomes.push_back(outcome); });
    }
    QueryOutcome outcomeOfOne() {
        outcomes.clear();
        query();
        EXPECT_TRUE(outcomes.empty());
        queues.runAll();
        EXPECT_TRUE(outcomes.empty());  // only on the main thread
        mainThread.run();
        return outcomes.size() == 1 ? outcomes[0] : QueryOutcome{.status = 999};
    }
    void serveQueries() {
        for (std::size_t index = 0; index < 4; ++index)
            queryPorts.push_back(
                ports.serve(queryPortName(kMainPort, index),
                            [](std::int32_t, ByteView) { return copyOf(bytesOf("told")); }));
    }

    std::vector<QueryOutcome> outcomes;
    std::vector<Handle> queryPorts;
};

TEST_F(MessagePortQueryTest, GoesOutFramedOnItsSlotsPort) {
    serveQueries();
    EXPECT_EQ(outcomeOfOne(), kTold);
    ASSERT_EQ(ports.sent.size(), 1U);
    EXPECT_EQ(ports.sent[0].port, queryPortName(kMainPort, 0));
    EXPECT_EQ(ports.sent[0].messageID, 14);
    EXPECT_EQ(ports.sent[0].body, framed(bytesOf("ask"), *secret));
    EXPECT_EQ(ports.sent[0].sendTimeout, 2s);
    EXPECT_EQ(ports.sent[0].receiveTimeout, 3s);
    EXPECT_TRUE(ports.sent[0].awaitsReply);
    for (const std::size_t next : {1, 2, 3, 0}) {
        EXPECT_EQ(outcomeOfOne(), kTold);
        EXPECT_EQ(ports.sent.back().port, queryPortName(kMainPort, next));
    }
    EXPECT_TRUE(log.take().empty());
}

TEST_F(MessagePortQueryTest, KeepsCountOfWhatIsOutstanding) {
    serveQueries();
    for (int i = 0; i < 6; ++i) query();
    queues.runNext(queryClientQueueLabel(0));
    queues.runNext(queryClientQueueLabel(0));
    query();  // slot 0's result has not reached the main thread yet
    const auto waiting = [&](std::size_t slot) {
        return queues.waiting(queryClientQueueLabel(slot));
    };
    EXPECT_EQ((std::vector{waiting(0), waiting(1), waiting(2), waiting(3)}),
              (std::vector<std::size_t>{0, 2, 2, 1}));
    mainThread.run();
    query();
    EXPECT_EQ(waiting(0), 1U);
}

TEST_F(MessagePortQueryTest, ExpiresAfterFiveSecondsInTheQueue) {
    serveQueries();
    query();
    clock.advance(5s);
    queues.runAll();
    query();
    clock.advance(5s + 1ns);
    queues.runAll();
    mainThread.run();
    ASSERT_EQ(outcomes.size(), 2U);
    EXPECT_EQ(outcomes[0].kind, Kind::sent);
    EXPECT_EQ(outcomes[1], QueryOutcome{.kind = Kind::expiredInQueue});
    EXPECT_EQ(ports.sent.size(), 1U);
    EXPECT_EQ(log.take(), Lines{"Query 14 not sent: it waited too long for query port 1"});
}

TEST_F(MessagePortQueryTest, WhatCannotBeSentIsNotSent) {
    EXPECT_EQ(outcomeOfOne(), QueryOutcome{});
    serveQueries();
    queues.refuses = [] { return true; };
    EXPECT_EQ(outcomeOfOne(), QueryOutcome{});
    queues.refuses = nullptr;
    for (const auto& bytes : {std::optional<Bytes>{}, {Bytes(31)}}) {
        secret = bytes;
        EXPECT_EQ(outcomeOfOne(), QueryOutcome{});
    }
    query(MessageType::requestState);
    EXPECT_EQ(mainThread.run(), 1);
    EXPECT_EQ(outcomes.back(), QueryOutcome{});
    EXPECT_TRUE(ports.sent.empty());
    EXPECT_EQ(log.take(), (Lines{"Cannot send query 14: query port 0 not available",
                                 "Cannot send query 14: query port 1 not available",
                                 "Query 14 not sent: IPC connection secret unavailable",
                                 "Query 14 not sent: IPC connection secret unavailable",
                                 "sendQuery: message type 1 is not a query"}));
}

TEST_F(MessagePortQueryTest, ADeadPortIsLookedUpAnewAndASlowOneKept) {
    serveQueries();
    ports.failures[queryPortName(kMainPort, 0)] = kPortReceiveTimeout;
    EXPECT_EQ(outcomeOfOne(), (QueryOutcome{Kind::sent, kPortReceiveTimeout, std::nullopt}));
    EXPECT_EQ(log.take(), (Lines{"Query 14 on query port 0 failed, status: -2"}));
    for (int i = 0; i < 3; ++i) outcomeOfOne();  // every slot has its port now
    ports.failures.clear();

    queryPorts.clear();  // the main application dies and restarts
    serveQueries();
    EXPECT_EQ(outcomeOfOne().status, kPortIsInvalid);
    queues.runAll();
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(outcomeOfOne(), kTold) << "after one failure every slot looks its port up";
}

TEST_F(MessagePortQueryTest, AQueryAlreadyWaitingBehindAFailedOneLooksItsPortUpAnew) {
    for (const std::int32_t status : {kPortSendTimeout, kPortTransportError, kPortBecameInvalid}) {
        serveQueries();
        ports.failures[queryPortName(kMainPort, 0)] = status;
        client = makeClient();
        for (int i = 0; i < 5; ++i) query();
        queues.runNext(queryClientQueueLabel(0));
        ports.failures.clear();
        queryPorts.clear();
        serveQueries();
        outcomes.clear();
        queues.runNext(queryClientQueueLabel(0));
        mainThread.run();
        ASSERT_EQ(outcomes.size(), 2U);
        EXPECT_EQ(outcomes[0].status, status);
        EXPECT_EQ(outcomes[1], kTold);
    }
}

TEST_F(MessagePortQueryTest, DisconnectingForgetsThePortsAfterTheQueriesInFlight) {
    serveQueries();
    outcomeOfOne();
    queryPorts.clear();
    serveQueries();
    client->disconnect();
    for (int i = 0; i < 4; ++i) EXPECT_EQ(outcomeOfOne(), kTold);
    client->disconnect();
    queues.runAll();
    client->disconnect();
    EXPECT_EQ(queues.waiting(queryClientQueueLabel(0)), 0U) << "a slot without a port is not woken";
}

TEST_F(MessagePortQueryTest, AfterItsEndNothingIsSentNorCompleted) {
    serveQueries();
    query();
    query();
    queues.runNext(queryClientQueueLabel(0));
    client.reset();
    queues.runAll();
    mainThread.run();
    EXPECT_EQ(ports.sent.size(), 1U);
    EXPECT_TRUE(outcomes.empty());
    EXPECT_EQ(ports.cancelled, 1) << "its end does not wait for a query in flight";
}

}  // namespace
}  // namespace quorvane

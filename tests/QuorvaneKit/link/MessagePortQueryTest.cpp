// Queries: which slot they take, when they expire, how each of their failures comes out.
#include <gtest/gtest.h>

#include "QuorvaneKit/link/QuerySlot.hpp"
#include "tests/QuorvaneKit/link/LinkFixture.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using Kind = QueryOutcome::Kind;

TEST(QuerySlots, LeastLoadFirstAfterTheLastUsed) {
    struct Row {
        std::array<int, 4> load;
        std::optional<std::size_t> last;
        std::size_t chosen;
    };
    const Row rows[] = {{{0, 0, 0, 0}, std::nullopt, 0},
                        {{0, 0, 0, 0}, 0, 1},
                        {{0, 0, 0, 0}, 3, 0},
                        {{1, 1, 1, 1}, 1, 2},
                        {{1, 0, 0, 1}, std::nullopt, 1},
                        {{0, 1, 1, 1}, 0, 0},
                        {{2, 1, 3, 1}, 0, 1},
                        {{2, 1, 3, 1}, 1, 3},
                        {{1, 2, 2, 2}, 3, 0},
                        {{3, 2, 1, 0}, 2, 3}};
    for (const Row& row : rows)
        EXPECT_EQ(chooseQuerySlot(row.load, row.last), row.chosen) << &row - rows;
}

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
            queryPorts.push_back(ports.serve(
                queryPort(index), [](std::int32_t, ByteView) { return copyOf(bytesOf("told")); }));
    }

    std::vector<QueryOutcome> outcomes;
    std::vector<Handle> queryPorts;
};

TEST_F(MessagePortQueryTest, GoesOutFramedOnItsSlotsPort) {
    serveQueries();
    const QueryOutcome told{Kind::sent, 0, copyOf(bytesOf("told"))};
    EXPECT_EQ(outcomeOfOne(), told);
    ASSERT_EQ(ports.sent.size(), 1U);
    EXPECT_EQ(ports.sent[0].port, queryPort(0));
    EXPECT_EQ(ports.sent[0].messageID, 14);
    EXPECT_EQ(textOf(ports.sent[0].body).substr(32), "ask");
    EXPECT_TRUE(std::ranges::equal(ByteView{ports.sent[0].body}.first(32), *secret));
    EXPECT_EQ(ports.sent[0].sendTimeout, 2s);
    EXPECT_EQ(ports.sent[0].receiveTimeout, 3s);
    EXPECT_TRUE(ports.sent[0].awaitsReply);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(outcomeOfOne(), told);
    EXPECT_EQ(ports.sent.back().port, queryPort(0));  // once around
    EXPECT_TRUE(log.take().empty());
}

TEST_F(MessagePortQueryTest, KeepsCountOfWhatIsOutstanding) {
    serveQueries();
    for (int i = 0; i < 6; ++i) query();
    EXPECT_EQ(queues.waiting(queueOf(0)), 2U);
    EXPECT_EQ(queues.waiting(queueOf(1)), 2U);
    EXPECT_EQ(queues.waiting(queueOf(3)), 1U);
    queues.runNext(queueOf(0));
    queues.runNext(queueOf(0));
    query();  // slots 2 and 3 come first: what slot 0 has done is not yet known on the main thread
    EXPECT_EQ(queues.waiting(queueOf(2)), 2U);
    mainThread.run();
    query();
    EXPECT_EQ(queues.waiting(queueOf(0)), 1U);
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
    EXPECT_EQ(log.take(), Lines{"Cannot send query 14: query port 0 not available"});
    serveQueries();
    queues.refuses = [] { return true; };
    EXPECT_EQ(outcomeOfOne(), QueryOutcome{});
    EXPECT_EQ(log.take(), Lines{"Cannot send query 14: query port 1 not available"});
    queues.refuses = nullptr;
    for (const auto& bytes : {std::optional<Bytes>{}, std::optional{Bytes(31)}}) {
        const auto kept = std::exchange(secret, bytes);
        EXPECT_EQ(outcomeOfOne(), QueryOutcome{});
        EXPECT_EQ(log.take(), Lines{"Query 14 not sent: IPC connection secret unavailable"});
        secret = kept;
    }
    query(MessageType::requestState);
    EXPECT_EQ(log.lines().back().level, LogLevel::error);
    EXPECT_EQ(log.take(), Lines{"sendQuery: message type 1 is not a query"});
    EXPECT_EQ(mainThread.run(), 1);
    EXPECT_EQ(outcomes.back(), QueryOutcome{});
    EXPECT_TRUE(ports.sent.empty());
}

TEST_F(MessagePortQueryTest, ADeadPortIsLookedUpAnewAndASlowOneKept) {
    serveQueries();
    ports.failures[queryPort(0)] = kPortReceiveTimeout;
    EXPECT_EQ(outcomeOfOne(), (QueryOutcome{Kind::sent, kPortReceiveTimeout, std::nullopt}));
    EXPECT_EQ(log.take(), (Lines{"Query 14 on query port 0 failed, status: -2"}));
    for (int i = 0; i < 3; ++i) outcomeOfOne();  // every slot has its port now
    ports.failures.clear();

    queryPorts.clear();  // the main application dies and comes back
    serveQueries();
    EXPECT_EQ(outcomeOfOne().status, kPortIsInvalid);
    queues.runAll();
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(outcomeOfOne(), (QueryOutcome{Kind::sent, 0, copyOf(bytesOf("told"))}))
            << "one death is enough to learn of";
}

TEST_F(MessagePortQueryTest, AQueryAlreadyWaitingBehindAFailedOneLooksItsPortUpAnew) {
    for (const std::int32_t status : {kPortSendTimeout, kPortTransportError, kPortBecameInvalid}) {
        serveQueries();
        ports.failures[queryPort(0)] = status;
        client = makeClient();
        for (int i = 0; i < 5; ++i) query();
        queues.runNext(queueOf(0));
        ports.failures.clear();
        queryPorts.clear();
        serveQueries();
        outcomes.clear();
        queues.runNext(queueOf(0));
        mainThread.run();
        ASSERT_EQ(outcomes.size(), 2U);
        EXPECT_EQ(outcomes[0].status, status);
        EXPECT_EQ(outcomes[1], (QueryOutcome{Kind::sent, 0, copyOf(bytesOf("told"))}));
    }
}

TEST_F(MessagePortQueryTest, DisconnectingForgetsThePortsAfterTheQueriesInFlight) {
    serveQueries();
    outcomeOfOne();
    queryPorts.clear();
    serveQueries();
    client->disconnect();
    for (int i = 0; i < 3; ++i) outcomeOfOne();
    EXPECT_EQ(outcomeOfOne().status, 0);
    client->disconnect();
    queues.runAll();
    client->disconnect();
    for (std::size_t index = 0; index < 4; ++index)
        EXPECT_EQ(queues.waiting(queueOf(index)), 0U) << "a slot without a port is not woken";
}

TEST_F(MessagePortQueryTest, AfterItsEndNothingIsSentNorCompleted) {
    serveQueries();
    query();
    query();
    queues.runNext(queueOf(0));
    client.reset();
    queues.runAll();
    mainThread.run();
    EXPECT_EQ(ports.sent.size(), 1U);
    EXPECT_TRUE(outcomes.empty());
    EXPECT_EQ(ports.cancelled, 1) << "its end does not wait for a query in flight";
}

}  // namespace
}  // namespace quorvane

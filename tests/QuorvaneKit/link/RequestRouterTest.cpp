// What becomes of each request: secret, type, port, handler, timeout.
#include "QuorvaneKit/link/RequestRouter.hpp"

#include <gtest/gtest.h>

#include <future>

#include "QuorvaneKit/link/MessagePortWire.hpp"
#include "tests/QuorvaneKit/records/SampleRecords.hpp"
#include "tests/support/ManualWait.hpp"
#include "tests/support/MemoryPorts.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using Answer = MessagePortHandlers::Answer;

class RequestRouterTest : public testing::Test {
protected:
    RequestRouterTest() {
        handlers.onActionReceived = [this](QuorvaneAction action) {
            called.push_back("action " + std::string{actionName(action)});
        };
        handlers.onVolumeChangeReceived = [this](std::int64_t value) {
            called.push_back("volume " + std::to_string(value));
        };
        handlers.onRatingChangeReceived = [this](std::int64_t value) {
            called.push_back("rating " + std::to_string(value));
        };
        handlers.onStateRequested = [this] {
            called.push_back("state");
            return state;
        };
        handlers.onWidgetDataRequested = [this] {
            called.push_back("widgets");
            return copyOf(bytesOf("{}"));
        };
        handlers.onLastFmQueryReceived = echo("query");
        handlers.onLastFmCallReceived = echo("call");
        handlers.onLastFmImageReceived = echo("image");
        handlers.onHistoryQueryReceived = echo("history");
        handlers.onLockScreenHelloReceived = echo("hello");
    }

    MessagePortHandlers::QueryHandler echo(std::string word) {
        return [this, word](Bytes request, Answer answer) {
            called.push_back(word + " " + std::string{textOf(request)});
            answer(copyOf(bytesOf(word)));
        };
    }
    std::string ask(PortEndpoint endpoint, std::int32_t messageID, std::string_view payload = "p",
                    std::byte secretByte = std::byte{9}) {
        RequestRouter router = makeRouter(endpoint);
        const Bytes body = framed(bytesOf(payload), Bytes(32, secretByte));
        return std::string{textOf(joined(router.answer(messageID, body).parts()))};
    }
    RequestRouter makeRouter(PortEndpoint endpoint) {
        return {endpoint, handlers, secret, Logger{log.sink(), "QuorvaneKit", "MessagePortServer"},
                wait};
    }

    MessagePortHandlers handlers;
    std::optional<Bytes> secret = Bytes(32, std::byte{9});
    std::optional<QuorvanePlayerState> state = sampleState();
    std::vector<std::string> called;
    RecordingLog log;
    std::shared_ptr<ManualWait> wait = std::make_shared<ManualWait>();
};

TEST_F(RequestRouterTest, EachTypeReachesItsHandlerOnItsPortOnly) {
    struct Row {
        std::int32_t messageID;
        std::string payload;
        std::string called;
        std::string reply;
    };
    const Row rows[] = {{1, "", "state", std::string{kSampleText}},
                        {2, "\x15", "action toggleDislike", ""},
                        {3, "\xFF", "volume 255", ""},
                        {4, std::string(1, '\0'), "rating 0", ""},
                        {5, "", "widgets", "{}"},
                        {10, "a", "query a", "query"},
                        {11, "b", "call b", "call"},
                        {12, "c", "image c", "image"},
                        {13, "d", "history d", "history"},
                        {14, "", "hello ", "hello"}};
    for (const Row& row : rows) {
        const bool isQuery = row.messageID >= 10;
        const PortEndpoint main = MainEndpoint{};
        const PortEndpoint query = QueryEndpoint{static_cast<std::size_t>(row.messageID) % 4};
        EXPECT_EQ(ask(isQuery ? query : main, row.messageID, row.payload), row.reply);
        EXPECT_EQ(std::exchange(called, {}), std::vector{row.called});
        EXPECT_TRUE(log.take().empty());

        EXPECT_EQ(ask(isQuery ? main : query, row.messageID, row.payload), "");
        EXPECT_TRUE(called.empty());
        EXPECT_EQ(log.take(), (Lines{"IPC: dropped message type " + std::to_string(row.messageID) +
                                     " sent to the wrong port"}));
    }
}

TEST_F(RequestRouterTest, TheSecretComesBeforeAnythingElse) {
    for (const std::int32_t messageID : {1, 14, 6, -7})
        EXPECT_EQ(ask(MainEndpoint{}, messageID, "p", std::byte{8}), "");
    secret.reset();
    EXPECT_EQ(ask(MainEndpoint{}, 1), "");
    secret = Bytes(32, std::byte{9});
    const std::string dropped =
        "IPC: dropped message with missing/mismatched connection secret (type ";
    EXPECT_EQ(log.take(), (Lines{dropped + "1)", dropped + "14)", dropped + "6)", dropped + "-7)",
                                 dropped + "1)"}));
    EXPECT_EQ(ask(QueryEndpoint{}, 6), "");
    EXPECT_EQ(log.lines().back().level, LogLevel::error);
    EXPECT_EQ(ask(MainEndpoint{}, 9), "");
    EXPECT_EQ(log.take(), (Lines{"Unknown message type: 6", "Unknown message type: 9"}));
    EXPECT_TRUE(called.empty());
}

TEST_F(RequestRouterTest, WithoutAHandlerOrAProperPayloadTheReplyIsEmpty) {
    EXPECT_EQ(ask(MainEndpoint{}, 2, ""), "");
    EXPECT_EQ(ask(MainEndpoint{}, 2, "\x03"), "");  // no action has this number
    EXPECT_EQ(ask(MainEndpoint{}, 3, ""), "");
    EXPECT_EQ(ask(MainEndpoint{}, 4, ""), "");
    EXPECT_TRUE(called.empty());
    state.reset();
    EXPECT_EQ(ask(MainEndpoint{}, 1), "");
    handlers = {};
    for (const std::int32_t messageID : {1, 2, 3, 4, 5})
        EXPECT_EQ(ask(MainEndpoint{}, messageID), "");
    for (std::int32_t messageID = 10; messageID <= 14; ++messageID)
        EXPECT_EQ(ask(QueryEndpoint{}, messageID), "");
    EXPECT_TRUE(log.take().empty());
}

TEST_F(RequestRouterTest, ARequestThatTheHistoryCannotDecodeIsLogged) {
    handlers.onHistoryQueryReceived = [](Bytes, const Answer& answer) { answer(std::nullopt); };
    handlers.onLastFmCallReceived = handlers.onHistoryQueryReceived;
    EXPECT_EQ(ask(QueryEndpoint{}, 13), "");
    EXPECT_EQ(log.take(), Lines{"History query dropped: undecodable request"});
    EXPECT_EQ(ask(QueryEndpoint{}, 11), "");
    EXPECT_TRUE(log.take().empty());
}

TEST_F(RequestRouterTest, AHandlerThatIsTooLateIsAnsweredEmpty) {
    struct Row {
        std::int32_t messageID;
        Duration timeout;
        std::string line;
    };
    const Row rows[] = {{10, 8s, "Last.fm query handler timed out"},
                        {11, 8s, "Last.fm call handler timed out"},
                        {12, 8s, "Last.fm image handler timed out"},
                        {13, 8s, "History query handler timed out"},
                        {14, 3s, "Lock-screen hello handler timed out"}};
    Answer late;
    const auto keep = [&](Bytes, Answer answer) { late = std::move(answer); };
    handlers.onLastFmQueryReceived = handlers.onLastFmCallReceived = keep;
    handlers.onLastFmImageReceived = handlers.onHistoryQueryReceived = keep;
    handlers.onLockScreenHelloReceived = keep;
    for (const Row& row : rows) {
        auto reply =
            std::async(std::launch::async, [&] { return ask(QueryEndpoint{1}, row.messageID); });
        wait->untilWaiting(1);
        wait->advance(row.timeout - 1ns);
        wait->untilWaiting(1);
        wait->advance(1ns);
        EXPECT_EQ(reply.get(), "");
        EXPECT_EQ(log.take(), Lines{row.line});
        late(copyOf(bytesOf("too late")));  // goes nowhere
    }
}

TEST_F(RequestRouterTest, AnAnswerFromAnotherThreadEndsTheWaitAndCountsOnce) {
    Answer kept;
    handlers.onHistoryQueryReceived = [&](Bytes, Answer answer) { kept = std::move(answer); };
    auto reply = std::async(std::launch::async, [&] { return ask(QueryEndpoint{}, 13); });
    wait->untilWaiting(1);
    kept(copyOf(bytesOf("first")));
    kept(copyOf(bytesOf("second")));
    EXPECT_EQ(reply.get(), "first");
}

TEST_F(RequestRouterTest, CancellingEndsTheWaitWithoutALine) {
    handlers.onLockScreenHelloReceived = [&](Bytes, const Answer&) { called.push_back("hello"); };
    RequestRouter router = makeRouter(QueryEndpoint{});
    const Bytes body = framed({}, *secret);
    auto reply = std::async(std::launch::async, [&] { return router.answer(14, body); });
    wait->untilWaiting(1);
    wait->cancel();
    EXPECT_EQ(reply.get().size(), 0U);
    EXPECT_EQ(router.answer(14, body).size(), 0U);  // nor is anything asked afterwards
    EXPECT_EQ(called.size(), 1U);
    EXPECT_TRUE(log.take().empty());
}

}  // namespace
}  // namespace quorvane

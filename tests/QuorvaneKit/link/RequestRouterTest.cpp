// How each request is routed: secret, type, port, handler, timeout.
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
        const auto number = [this](const std::string& name) {
            return [this, name](auto value) {
                called.push_back(name + std::to_string(static_cast<int>(value)));
            };
        };
        handlers.onActionReceived = number("action ");
        handlers.onVolumeChangeReceived = number("volume ");
        handlers.onRatingChangeReceived = number("rating ");
        handlers.onStateRequested = [this] {
            called.push_back("state");
            return state;
        };
        handlers.onWidgetDataRequested = [this] {
            called.push_back("widgets");
            return copyOf(bytesOf("widgets"));
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
    std::string ask(PortKind kind, std::int32_t messageID, std::string_view payload = "p",
                    std::byte secretByte = std::byte{9}) {
        RequestRouter router{kind, handlers, secret,
                             Logger{log.sink(), "QuorvaneKit", "MessagePortServer"}, wait};
        const Bytes body = framed(bytesOf(payload), Bytes(32, secretByte));
        return std::string{textOf(joined(router.answer(messageID, body).parts()))};
    }
    // Returns when the router waits for the handler.
    std::future<std::string> askLater(std::int32_t messageID) {
        auto reply = std::async(std::launch::async,
                                [this, messageID] { return ask(PortKind::query, messageID); });
        wait->untilWaiting(1);
        return reply;
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
    for (const auto& [messageID, payload, handler, reply] :
         {Row{1, "", "state", std::string{kSampleText}}, Row{2, "\x15", "action 21", ""},
          Row{3, "\xFF", "volume 255", ""}, Row{4, std::string(1, '\0'), "rating 0", ""},
          Row{5, "", "widgets", "widgets"}, Row{10, "a", "query a", "query"},
          Row{11, "b", "call b", "call"}, Row{12, "c", "image c", "image"},
          Row{13, "d", "history d", "history"}, Row{14, "", "hello ", "hello"}}) {
        PortKind right = PortKind::main;
        PortKind wrong = PortKind::query;
        if (messageID >= 10) std::swap(right, wrong);
        EXPECT_EQ(ask(right, messageID, payload), reply);
        EXPECT_EQ(std::exchange(called, {}), std::vector{handler});
        EXPECT_TRUE(log.take().empty());
        EXPECT_EQ(ask(wrong, messageID, payload), "");
        EXPECT_TRUE(called.empty());
        EXPECT_EQ(log.take(), (Lines{"IPC: dropped message type " + std::to_string(messageID) +
                                     " sent to the wrong port"}));
    }
}

TEST_F(RequestRouterTest, TheSecretComesBeforeAnythingElse) {
    EXPECT_EQ(ask(PortKind::main, 6, "p", std::byte{8}), "");
    secret.reset();
    EXPECT_EQ(ask(PortKind::main, 1), "");
    secret = Bytes(32, std::byte{9});
    for (const std::int32_t messageID : {-1, 0, 6, 9, 15, 257})
        EXPECT_EQ(ask(PortKind::query, messageID), "");
    const std::string dropped =
        "IPC: dropped message with missing/mismatched connection secret (type ";
    const std::string unknown = "Unknown message type: ";
    EXPECT_EQ(log.take(), (Lines{dropped + "6)", dropped + "1)", unknown + "-1", unknown + "0",
                                 unknown + "6", unknown + "9", unknown + "15", unknown + "257"}));
    EXPECT_TRUE(called.empty());
}

TEST_F(RequestRouterTest, WithoutAHandlerOrAProperPayloadTheReplyIsEmpty) {
    for (const std::int32_t messageID : {2, 3, 4})
        EXPECT_EQ(ask(PortKind::main, messageID, ""), "");
    EXPECT_EQ(ask(PortKind::main, 2, "\x03"), "");  // no action has this number
    EXPECT_TRUE(called.empty());
    state.reset();
    EXPECT_EQ(ask(PortKind::main, 1), "");
    handlers = {};
    for (const std::int32_t messageID : {1, 2, 3, 4, 5})
        EXPECT_EQ(ask(PortKind::main, messageID), "");
    for (std::int32_t messageID = 10; messageID <= 14; ++messageID)
        EXPECT_EQ(ask(PortKind::query, messageID), "");
    EXPECT_TRUE(log.take().empty());
    handlers.onHistoryQueryReceived = [](Bytes, const Answer& answer) { answer(std::nullopt); };
    handlers.onLastFmCallReceived = handlers.onHistoryQueryReceived;
    EXPECT_EQ(ask(PortKind::query, 13), "");
    EXPECT_EQ(ask(PortKind::query, 11), "");
    EXPECT_EQ(log.take(), Lines{"History query dropped: undecodable request"});
}

TEST_F(RequestRouterTest, AHandlerThatIsTooLateIsAnsweredEmpty) {
    struct Row {
        std::int32_t messageID;
        Duration timeout;
        std::string name;
    };
    Answer late;
    handlers.onLastFmQueryReceived = [&](Bytes, Answer answer) { late = std::move(answer); };
    handlers.onLastFmCallReceived = handlers.onLastFmImageReceived =
        handlers.onHistoryQueryReceived = handlers.onLockScreenHelloReceived =
            handlers.onLastFmQueryReceived;
    for (const auto& [messageID, timeout, name] :
         {Row{10, 8s, "Last.fm query"}, Row{11, 8s, "Last.fm call"}, Row{12, 8s, "Last.fm image"},
          Row{13, 8s, "History query"}, Row{14, 3s, "Lock-screen hello"}}) {
        auto reply = askLater(messageID);
        wait->advance(timeout - 1ns);
        wait->untilWaiting(1);
        wait->advance(1ns);
        EXPECT_EQ(reply.get(), "");
        EXPECT_EQ(log.take(), Lines{name + " handler timed out"});
        late(copyOf(bytesOf("too late")));  // ignored
    }
    auto answered = askLater(13);
    late(copyOf(bytesOf("first")));
    late(copyOf(bytesOf("second")));
    EXPECT_EQ(answered.get(), "first");
}

TEST_F(RequestRouterTest, CancellingEndsTheWaitWithoutALine) {
    handlers.onLockScreenHelloReceived = [&](Bytes, const Answer&) { called.push_back("hello"); };
    auto reply = askLater(14);
    wait->cancel();
    EXPECT_EQ(reply.get(), "");
    EXPECT_EQ(ask(PortKind::query, 14), "");  // the handler is not called again either
    EXPECT_EQ(called.size(), 1U);
    EXPECT_TRUE(log.take().empty());
}

}  // namespace
}  // namespace quorvane

// The server's threads: opening, waiting for names, stopping; and client and server together.
#include "QuorvaneKit/link/MessagePortServer.hpp"

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

constexpr char kMain[] = "group.example.quillon.Quorvane.messageport";
constexpr char kQueryZero[] = "group.example.quillon.Quorvane.messageport.query.0";
constexpr char kQueryOne[] = "group.example.quillon.Quorvane.messageport.query.1";
constexpr char kQueryTwo[] = "group.example.quillon.Quorvane.messageport.query.2";
constexpr char kQueryThree[] = "group.example.quillon.Quorvane.messageport.query.3";

class MessagePortServerTest : public testing::Test {
protected:
    std::unique_ptr<MessagePortServer> makeServer() {
        auto server = std::make_unique<MessagePortServer>(MessagePortServer::Services{
            .log = log.sink(),
            .openPort =
                [this](const std::string& name, PortHandler handler) {
                    noteAttempt(name);
                    return ports.openPort()(name, std::move(handler));
                },
            .portsProblem = [this] { return portsProblem; },
            .nameCurrentThread =
                [this](const std::string& name) {
                    const std::lock_guard guard{mutex};
                    threadNames.insert(name);
                },
            .makeWait = [this] { return wait = std::make_shared<ManualWait>(); }});
        server->expectedSecret = Bytes(32, std::byte{9});
        server->handlers.onStateRequested = [] { return sampleState(); };
        server->handlers.onHistoryQueryReceived = [this](Bytes,
                                                         MessagePortHandlers::Answer answer) {
            historyAnswer = std::move(answer);
        };
        return server;
    }
    void noteAttempt(const std::string& name) {
        const std::lock_guard guard{mutex};
        attempts[name].push_back(wait->elapsed());
    }
    Lines linesAbout(const std::string& port) const {
        Lines lines;
        for (const auto& line : log.lines())
            if (line.text.starts_with("Message port " + port + " ")) lines.push_back(line.text);
        return lines;
    }
    PortReply ask(const std::string& port, std::int32_t messageID) {
        return ports.ask(port, messageID, framed({}, Bytes(32, std::byte{9})));
    }

    // A server whose port query 0 is held by another, while its `start` waits for just that.
    std::unique_ptr<MessagePortServer> makeBlockedServer() {
        holder = ports.openPort()(kQueryZero, [](std::int32_t, ByteView) { return Bytes{}; });
        auto server = makeServer();
        started = std::async(std::launch::async, [made = server.get()] { made->start(); });
        for (const std::string port : {kMain, kQueryOne, kQueryTwo, kQueryThree})
            while (ask(port, 1).status == 999) std::this_thread::yield();
        wait->untilWaiting(2);  // `start` and the port
        return server;
    }

    MessagePortHandlers::Answer historyAnswer;
    std::unique_ptr<LocalPort> holder;
    std::future<void> started;
    std::mutex mutex;
    std::map<std::string, std::vector<Duration>> attempts;  // under mutex while a server runs
    std::set<std::string> threadNames;                      // likewise
    RecordingLog log;
    MemoryPorts ports;
    std::optional<std::string> portsProblem;
    std::shared_ptr<ManualWait> wait;  // of the last start
};

TEST_F(MessagePortServerTest, ServesFiveNamesUntilItStops) {
    const auto server = makeServer();
    for (int round = 0; round < 2; ++round) {
        server->start();
        EXPECT_EQ(linesAbout(kMain),
                  (Lines{std::string{"Message port "} + kMain + " started on dedicated thread"}));
        const PortReply reply = ask(kMain, 1);
        ASSERT_TRUE(reply.body);
        EXPECT_EQ(textOf(*reply.body), kSampleText);
        for (std::size_t index = 0; index < 4; ++index)
            EXPECT_EQ(ask(queryPortName(kMain, index), 14).status, 0);
        server->stop();
        EXPECT_EQ(ports.connectPort()(kMain), nullptr);
        EXPECT_EQ(linesAbout(kQueryTwo).back(),
                  std::string{"Message port "} + kQueryTwo + " thread exited");
        EXPECT_TRUE(log.contains("Message port server stopped"));
        server->stop();
        log.take();
    }
    EXPECT_EQ(threadNames, (std::set<std::string>{"example.quillon.Quorvane.messageport",
                                                  "example.quillon.Quorvane.messageport.query.0",
                                                  "example.quillon.Quorvane.messageport.query.1",
                                                  "example.quillon.Quorvane.messageport.query.2",
                                                  "example.quillon.Quorvane.messageport.query.3"}));
}

TEST_F(MessagePortServerTest, RetriesABusyNameByTheStatedScheduleAndTakesItOver) {
    const auto server = makeBlockedServer();
    std::vector<Duration> expected;
    for (int attempt = 1; attempt <= 16; ++attempt) {
        expected.push_back(wait->elapsed());
        // The retrying port, and `start` in its first two seconds.
        wait->untilWaiting(wait->elapsed() < 2s ? 2 : 1);
        if (attempt == 16) holder.reset();
        wait->advance(attempt < 9 ? 500ms : 2s);
    }
    expected.push_back(wait->elapsed());
    started.get();
    while (ask(kQueryZero, 14).status == 999) std::this_thread::yield();
    {
        const std::lock_guard guard{mutex};
        EXPECT_EQ(attempts[kQueryZero], expected);
        EXPECT_EQ(attempts[kMain].size(), 1U);
    }
    server->stop();
    const std::string port = std::string{"Message port "} + kQueryZero;
    const std::string rest = "; another instance holds it — retrying until it frees";
    EXPECT_EQ(linesAbout(kQueryZero),
              (Lines{port + " busy (attempt 1)" + rest, port + " busy (attempt 15)" + rest,
                     port + " started on dedicated thread", port + " thread exited"}));
    EXPECT_TRUE(
        log.contains("Message port thread example.quillon.Quorvane.messageport.query.0 did "
                     "not become ready within 2s"));
}

TEST_F(MessagePortServerTest, StoppingEndsRetriesAndWaitsForHandlersAtOnce) {
    portsProblem = "no folder";
    const auto server = makeBlockedServer();
    wait->advance(2s);
    started.get();
    wait->untilWaiting(1);
    auto reply = std::async(std::launch::async, [&] { return ask(kQueryTwo, 13); });
    wait->untilWaiting(2);
    server->stop();
    const std::string port = std::string{"Message port "} + kQueryZero;
    EXPECT_EQ(linesAbout(kQueryZero),
              (Lines{port + " cannot be opened (attempt 1): no folder; retrying",
                     port + " stopped before it could open"}));
    EXPECT_FALSE(reply.get().body);
}

TEST_F(MessagePortServerTest, ASlowQueryHoldsOnlyItsOwnPort) {
    const auto server = makeServer();
    server->start();
    auto slow = std::async(std::launch::async, [&] { return ask(kQueryTwo, 13); });
    wait->untilWaiting(1);
    EXPECT_TRUE(ask(kMain, 1).body);
    EXPECT_EQ(ask(queryPortName(kMain, 1), 14).status, 0);
    historyAnswer(copyOf(bytesOf("history")));
    EXPECT_EQ(textOf(*slow.get().body), "history");
}

}  // namespace
}  // namespace quorvane

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

const std::string kMain{kMessagePortBaseName};
const std::string kQueryZero = kMain + ".query.0";
const std::string kQueryTwo = kMain + ".query.2";

class MessagePortServerTest : public testing::Test {
protected:
    MessagePortServerTest() {
        server.expectedSecret = Bytes(32, std::byte{9});
        server.handlers.onStateRequested = [] { return sampleState(); };
        server.handlers.onHistoryQueryReceived = [](Bytes, const MessagePortHandlers::Answer&) {};
    }
    Lines linesOfQueryZero() const {
        Lines lines;
        for (const auto& line : log.lines())
            if (line.text.starts_with("Message port " + kQueryZero + " "))
                lines.push_back(line.text);
        return lines;
    }
    PortReply ask(const std::string& port, std::int32_t messageID) {
        return ports.ask(port, messageID, framed({}, Bytes(32, std::byte{9})));
    }

    // Another server holds port query 0, and `start` waits for only that port.
    void startBlocked() {
        holder = ports.openPort()(kQueryZero, [](std::int32_t, ByteView) { return Bytes{}; });
        started = std::async(std::launch::async, [this] { server.start(); });
        for (const std::string& port :
             {kMain, queryPortName(kMain, 1), kQueryTwo, queryPortName(kMain, 3)})
            while (ask(port, 1).status == 999) std::this_thread::yield();
        wait->untilWaiting(2);  // `start` and the port
    }

    std::mutex mutex;
    std::vector<Duration> attempts;     // at port query 0; under mutex while the server runs
    std::set<std::string> threadNames;  // under mutex too
    RecordingLog log;
    MemoryPorts ports;
    std::unique_ptr<LocalPort> holder;
    std::optional<std::string> portsProblem;
    std::shared_ptr<ManualWait> wait;  // of the last start
    MessagePortServer server{
        {.log = log.sink(),
         .openPort =
             [this](const std::string& name, PortHandler handler) {
                 const std::lock_guard guard{mutex};
                 if (name == kQueryZero) attempts.push_back(wait->elapsed());
                 return ports.openPort()(name, std::move(handler));
             },
         .portsProblem = [this] { return portsProblem; },
         .nameCurrentThread =
             [this](const std::string& name) {
                 const std::lock_guard guard{mutex};
                 threadNames.insert(name);
             },
         .makeWait = [this] { return wait = std::make_shared<ManualWait>(); }}};
    std::future<void> started;
};

TEST_F(MessagePortServerTest, RetriesABusyNameByTheStatedScheduleAndTakesItOver) {
    startBlocked();
    std::vector<Duration> expected;
    for (int attempt = 1; attempt <= 16; ++attempt) {
        expected.push_back(wait->elapsed());
        // The retrying port, and `start` in its first two seconds.
        wait->untilWaiting(wait->elapsed() < 2s ? 2 : 1);
        if (attempt == 16) holder.reset();
        const Duration delay = attempt < 9 ? 500ms : 2s;
        wait->advance(delay - 1ns);
        wait->untilWaiting(wait->elapsed() < 2s ? 2 : 1);
        wait->advance(1ns);
    }
    expected.push_back(wait->elapsed());
    started.get();
    while (ask(kQueryZero, 14).status == 999) std::this_thread::yield();
    server.stop();
    EXPECT_EQ(attempts, expected);
    const std::string port = "Message port " + kQueryZero;
    const std::string rest = "; another instance holds it — retrying until it frees";
    EXPECT_EQ(linesOfQueryZero(),
              (Lines{port + " busy (attempt 1)" + rest, port + " busy (attempt 15)" + rest,
                     port + " started on dedicated thread", port + " thread exited"}));
    EXPECT_TRUE(
        log.contains("Message port thread example.quillon.Quorvane.messageport.query.0 did "
                     "not become ready within 2s"));
}

TEST_F(MessagePortServerTest, StoppingEndsRetriesAndWaitsForHandlersAtOnce) {
    portsProblem = "no folder";
    startBlocked();
    wait->advance(2s);
    started.get();
    wait->untilWaiting(1);
    auto reply = std::async(std::launch::async, [&] { return ask(kQueryTwo, 13); });
    wait->untilWaiting(2);
    EXPECT_EQ(textOf(ask(kMain, 1).body.value()), kSampleText)
        << "a slow query holds only its own port";
    server.stop();
    EXPECT_TRUE(log.contains("Message port server stopped"));
    const std::string prefix = "example.quillon.Quorvane.messageport";
    EXPECT_EQ(threadNames, (std::set{prefix, prefix + ".query.0", prefix + ".query.1",
                                     prefix + ".query.2", prefix + ".query.3"}));
    const std::string port = "Message port " + kQueryZero;
    EXPECT_EQ(linesOfQueryZero(),
              (Lines{port + " cannot be opened (attempt 1): no folder; retrying",
                     port + " stopped before it could open"}));
    EXPECT_FALSE(reply.get().body);
}

}  // namespace
}  // namespace quorvane

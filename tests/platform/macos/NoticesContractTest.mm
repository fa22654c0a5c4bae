// The adapters' contract for time, notices and message ports, checked on the real system.
#import <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <thread>

#include "platform/macos/ports/MessagePortsMacOS.hpp"
#include "platform/macos/services/ServicesMacOS.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

// Runs the main loop until the condition holds, for ten seconds at most.
bool turnMainLoopUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + 10s;
    while (!condition() && std::chrono::steady_clock::now() < end) {
        const Timer look =
            makeClockMacOS().after(20ms, [] { CFRunLoopStop(CFRunLoopGetCurrent()); });
        CFRunLoopRun();
    }
    return condition();
}

std::string uniqueName(const std::string& what) {
    return "example.quillon.Quorvane.Tests." + std::to_string(getpid()) + "." + what;
}

TEST(ClockMacOS, FiresOnceLaterAndNotWhenDropped) {
    const Clock clock = makeClockMacOS();
    int fired = 0;
    bool isOver = false;
    const Timer kept = clock.after(10ms, [&] { ++fired; });
    Timer dropped = clock.after(10ms, [&] { fired += 100; });
    dropped.reset();
    const Timer last = clock.after(100ms, [&] { isOver = true; });
    EXPECT_EQ(fired, 0);
    EXPECT_TRUE(turnMainLoopUntil([&] { return isOver; }));
    EXPECT_EQ(fired, 1);
}

TEST(MainThreadMacOS, RunsInOrderAndNeverInsideThePost) {
    const MainThread mainThread = makeMainThreadMacOS();
    std::string order;
    std::thread{[&] {
        mainThread.post([&] { order += 'a'; });
        mainThread.post([&] { order += 'b'; });
    }}.join();
    mainThread.post([&] { order += 'c'; });
    EXPECT_EQ(order, "");
    EXPECT_TRUE(turnMainLoopUntil([&] { return order.size() == 3; }));
    EXPECT_EQ(order, "abc");
}

TEST(SerialQueueMacOS, KeepsOrderAndDropsWhatWaits) {
    std::string order;
    std::atomic<bool> hasBegun = false;
    auto queue = makeSerialQueuesMacOS()("example.quillon.Quorvane.Tests");
    EXPECT_TRUE(queue->async([&] {
        hasBegun = true;
        std::this_thread::sleep_for(50ms);
        order += 'a';
    }));
    EXPECT_TRUE(queue->async([&] { order += 'b'; }));
    while (!hasBegun) std::this_thread::yield();
    queue.reset();
    EXPECT_EQ(order, "a");
}

TEST(DarwinNoticesMacOS, ReachTheirObserversUntilDropped) {
    const DarwinNotices notices = makeDarwinNoticesMacOS();
    int count = 0;
    Handle handle = notices.observe(uniqueName("darwin"), [&] { ++count; });
    notices.post(uniqueName("darwin"));
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(turnMainLoopUntil([&] { return count == 1; }));
    handle.reset();
    int others = 0;
    const Handle other = notices.observe(uniqueName("darwin"), [&] { ++others; });
    notices.post(uniqueName("darwin"));
    EXPECT_TRUE(turnMainLoopUntil([&] { return others == 1; }));
    EXPECT_EQ(count, 1);
}

TEST(DistributedNoticesMacOS, BringTheirUserInfoWithItsTypes) {
    const DistributedNotices notices = makeDistributedNoticesMacOS();
    const PropertyDictionary sent{{"connected", {true}}, {"version", {std::string{"1.0"}}}};
    std::optional<PropertyDictionary> received;
    const Handle handle = notices.observe(
        uniqueName("status"), [&](const PropertyDictionary& userInfo) { received = userInfo; });
    notices.post(uniqueName("status"), sent);
    EXPECT_TRUE(turnMainLoopUntil([&] { return received.has_value(); }));
    EXPECT_EQ(received, sent);
}

class PortMacOS : public testing::Test {
protected:
    void serve(PortHandler handler) {
        port_ = makeOpenPortMacOS()(name_, std::move(handler));
        ASSERT_NE(port_, nullptr);
        thread_ = std::thread{[this] { port_->run(); }};
    }
    void TearDown() override {
        if (!port_) return;
        port_->stop();
        thread_.join();
    }

    const std::string name_ = uniqueName("port");
    std::unique_ptr<LocalPort> port_;
    std::thread thread_;
};

TEST_F(PortMacOS, AnswersAndTellsEmptyFromNothing) {
    serve([](std::int32_t messageID, ByteView body) {
        return messageID == 7 ? copyOf(body) : Bytes{};
    });
    const auto remote = makeConnectPortMacOS()(name_);
    ASSERT_NE(remote, nullptr);
    const Bytes large(1 << 20, std::byte{5});
    PortRequest request{.messageID = 7,
                        .body = large,
                        .sendTimeout = 5s,
                        .receiveTimeout = 5s,
                        .awaitsReply = true};
    const PortReply echoed = remote->send(request);
    EXPECT_EQ(echoed.status, kPortSuccess);
    EXPECT_EQ(echoed.body, large);
    request.messageID = 8;
    const PortReply empty = remote->send(request);
    EXPECT_EQ(empty.status, kPortSuccess);
    EXPECT_EQ(empty.body, std::nullopt);
}

TEST_F(PortMacOS, HasOneServerAName) {
    EXPECT_EQ(makeConnectPortMacOS()(name_), nullptr);
    serve([](std::int32_t, ByteView) { return Bytes{}; });
    EXPECT_EQ(makeOpenPortMacOS()(name_, [](std::int32_t, ByteView) { return Bytes{}; }), nullptr);
}

TEST_F(PortMacOS, StopsThoughItHasNotBegun) {
    const auto port = makeOpenPortMacOS()(name_, [](std::int32_t, ByteView) { return Bytes{}; });
    ASSERT_NE(port, nullptr);
    port->stop();
    port->run();
}

// The server was replaced: dropping a port must not bring the dead one back.
TEST_F(PortMacOS, IsFoundAgainAfterItsServerWasReplaced) {
    auto remote = std::unique_ptr<RemotePort>{};
    for (int round = 0; round < 2; ++round) {
        serve([](std::int32_t, ByteView) { return copyOf(bytesOf("here")); });
        remote.reset();
        remote = makeConnectPortMacOS()(name_);
        ASSERT_NE(remote, nullptr);
        const PortReply reply = remote->send(
            {.messageID = 1, .sendTimeout = 5s, .receiveTimeout = 5s, .awaitsReply = true});
        EXPECT_EQ(reply.status, kPortSuccess) << round;
        TearDown();
        port_.reset();
    }
}

}  // namespace
}  // namespace quorvane

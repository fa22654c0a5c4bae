// What every kind of message port promises: the sockets, and the ports in memory that other tests
// build upon.
#include <gtest/gtest.h>

#include "tests/platform/linux/ports/PortTools.hpp"
#include "tests/support/MemoryPorts.hpp"

namespace quorvane {
namespace {

struct PortWorld {
    OpenPort open;
    ConnectPort connect;
    std::shared_ptr<void> owner;
};

PortWorld socketWorld() {
    const auto folder = std::make_shared<TemporaryFolder>();
    return {makeOpenPortLinux(folder->path()), makeConnectPortLinux(folder->path()), folder};
}
PortWorld memoryWorld() {
    const auto ports = std::make_shared<MemoryPorts>();
    return {ports->openPort(), ports->connectPort(), ports};
}

class PortContract : public testing::TestWithParam<PortWorld (*)()> {
protected:
    const PortWorld world = GetParam()();
    // A handler that waits until it is let go, and tells that it runs.
    std::latch isHandling{1};
    std::promise<void> letGo;
    std::shared_future<void> isLetGo = letGo.get_future().share();
    PortHandler slow = [this](std::int32_t messageID, ByteView body) {
        if (messageID == 1) {
            isHandling.count_down();
            isLetGo.wait();
        }
        return copyOf(body);
    };
};

TEST_P(PortContract, ARequestIsAnsweredWithItsIdAndBody) {
    const ServedPort port{world.open, [](std::int32_t messageID, ByteView body) {
                              const auto text =
                                  std::to_string(messageID) + std::string{textOf(body)};
                              return copyOf(bytesOf(text));
                          }};
    const auto remote = world.connect(kName);
    ASSERT_NE(remote, nullptr);
    for (const std::int32_t messageID : {1, -1, INT32_MAX, INT32_MIN}) {
        PortRequest asked = request(bytesOf("?"));
        asked.messageID = messageID;
        const PortReply reply = remote->send(asked);
        EXPECT_EQ(reply.status, kPortSuccess);
        EXPECT_EQ(textIn(reply), std::to_string(messageID) + "?");
    }
}

TEST_P(PortContract, AnEmptyReplyHasNoBodyAndIsASuccess) {
    const ServedPort port{world.open, [](std::int32_t, ByteView) { return Bytes{}; }};
    const PortReply reply = world.connect(kName)->send(request({}));
    EXPECT_EQ(reply.status, kPortSuccess);
    EXPECT_FALSE(reply.body);
}

TEST_P(PortContract, EveryLengthComesThroughWhole) {
    constexpr std::size_t kLongReply = 16 << 20;
    const auto inParts = [](ByteView whole) {
        const std::size_t third = whole.size() / 3;
        PortAnswer answer{copyOf(whole.first(third))};
        answer.shared = std::make_shared<const Bytes>(copyOf(whole.subspan(third, third)));
        answer.place = third;
        append(answer.bytes, whole.subspan(2 * third));
        return answer;
    };
    const ServedPort port{world.open, [&](std::int32_t messageID, ByteView body) -> PortAnswer {
                              if (messageID == 7) return inParts(body);
                              Bytes reply(messageID == 2 ? kLongReply : 0);
                              if (messageID == 2)
                                  reply.back() = reply[kLongReply / 2] = std::byte{9};
                              return inParts(reply);
                          }};
    const auto remote = world.connect(kName);
    Bytes memory;  // of the reply before, which may be longer or shorter
    for (const std::size_t length : {1, 4071, 4072, 4073, 4096, 1 << 20, 65536}) {
        Bytes body(length);
        for (std::size_t i = 0; i < length; ++i) body[i] = static_cast<std::byte>(i * 31 + i / 256);
        PortRequest asked = request(ByteView{body}.subspan(length / 3));
        asked.secret = ByteView{body}.first(length / 3);
        asked.replyMemory = std::move(memory);
        PortReply reply = remote->send(std::move(asked));
        ASSERT_EQ(reply.status, kPortSuccess) << length;
        ASSERT_TRUE(reply.body);
        EXPECT_TRUE(*reply.body == body) << length;
        memory = *std::move(reply.body);
    }
    PortRequest asked = request({});
    asked.messageID = 2;
    const PortReply reply = remote->send(asked);
    ASSERT_TRUE(reply.body && reply.body->size() == kLongReply);
    EXPECT_EQ(reply.body->back(), std::byte{9});
    EXPECT_EQ((*reply.body)[kLongReply / 2], std::byte{9});
    const LongBody largest{MemoryPorts::kLargestBody};
    asked = request(largest.view());
    asked.messageID = 3;
    EXPECT_EQ(remote->send(asked).status, kPortSuccess);
}

TEST_P(PortContract, OverTheBoundIsRefusedAndThePortStaysGood) {
    std::atomic<int> calls = 0;
    const ServedPort port{world.open, [&](std::int32_t, ByteView) {
                              return Bytes(++calls == 1 ? MemoryPorts::kLargestBody + 1 : 5);
                          }};
    const auto remote = world.connect(kName);
    const LongBody tooLong{MemoryPorts::kLargestBody + 1};
    EXPECT_EQ(remote->send(request(tooLong.view())).status, kPortTransportError);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(remote->send(request({})).status, kPortTransportError);
    EXPECT_EQ(remote->send(request({})).body->size(), 5U);
}

TEST_P(PortContract, ANameHasOneOwnerWhileItLives) {
    EXPECT_EQ(world.connect(kName), nullptr);
    auto first = world.open(kName, echo);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(world.open(kName, echo), nullptr);
    EXPECT_NE(world.open("another", echo), nullptr);
    first.reset();
    EXPECT_EQ(world.connect(kName), nullptr);
    EXPECT_NE(world.open(kName, echo), nullptr);
}

TEST_P(PortContract, StopBeforeRunEndsTheRun) {
    const auto port = world.open(kName, echo);
    port->stop();
    port->run();
}

TEST_P(PortContract, WithoutAReplyAwaitedTheHandlerIsNotWaitedFor) {
    std::promise<std::string> heard;
    const ServedPort port{world.open, [&](std::int32_t messageID, ByteView body) {
                              if (messageID == 1) isLetGo.wait();
                              if (messageID == 1) heard.set_value(std::string{textOf(body)});
                              return copyOf(bytesOf("never seen"));
                          }};
    const auto remote = world.connect(kName);
    const PortReply reply =
        remote->send({.messageID = 1, .body = bytesOf("told"), .sendTimeout = 20s});
    EXPECT_EQ(reply.status, kPortSuccess);
    EXPECT_FALSE(reply.body);
    letGo.set_value();
    EXPECT_EQ(heard.get_future().get(), "told");
    EXPECT_EQ(textIn(remote->send(request({}))), "never seen");
}

TEST_P(PortContract, ALateReplyIsNeverTakenForAnother) {
    const ServedPort port{world.open, slow};
    const auto remote = world.connect(kName);
    const LongBody first{1 << 20};
    PortRequest late = request(first.view());
    late.messageID = 1;
    late.receiveTimeout = 10ms;
    EXPECT_EQ(remote->send(late).status, kPortReceiveTimeout);
    letGo.set_value();
    for (const std::string_view word : {"2", "3"})
        EXPECT_EQ(textIn(remote->send(request(bytesOf(word)))), word);
}

TEST_P(PortContract, WhatIsNotTakenInTimeIsASendTimeout) {
    const ServedPort port{world.open, slow};
    const auto other = world.connect(kName);
    other->send({.messageID = 1, .sendTimeout = 20s});
    isHandling.wait();
    const LongBody body{8 << 20};
    const PortReply reply = world.connect(kName)->send({.messageID = 7,
                                                        .body = body.view(),
                                                        .sendTimeout = 10ms,
                                                        .receiveTimeout = 20s,
                                                        .awaitsReply = true});
    EXPECT_EQ(reply.status, kPortSendTimeout);
    letGo.set_value();
}

TEST_P(PortContract, AStoppedPortAnswersNobodyAndADeadOneIsInvalid) {
    auto port = std::make_unique<ServedPort>(world.open, echo);
    const auto used = world.connect(kName);
    const auto unused = world.connect(kName);
    EXPECT_EQ(textIn(used->send(request(bytesOf("1")))), "1");
    port.reset();
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(used->send(request({})).status, kPortIsInvalid);
        EXPECT_EQ(unused->send(request({})).status, kPortIsInvalid);
    }
    const ServedPort next{world.open, echo};
    EXPECT_EQ(used->send(request({})).status, kPortIsInvalid);  // it is another port
    EXPECT_EQ(textIn(world.connect(kName)->send(request(bytesOf("2")))), "2");
}

INSTANTIATE_TEST_SUITE_P(Ports, PortContract, testing::Values(&socketWorld, &memoryWorld),
                         [](const auto& which) { return which.index == 0 ? "Sockets" : "Memory"; });

}  // namespace
}  // namespace quorvane

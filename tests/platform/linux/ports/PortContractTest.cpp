// The contract of the socket ports, for both sides.
#include <gtest/gtest.h>

#include "tests/platform/linux/ports/PortTools.hpp"

namespace quorvane {
namespace {

class PortContract : public testing::Test {
protected:
    const TemporaryFolder folder;
    const OpenPort open = makeOpenPortLinux(folder.path());
    const ConnectPort connect = makeConnectPortLinux(folder.path());
};

TEST_F(PortContract, EveryLengthComesThroughWhole) {
    const ServedPort port{open, [&](std::int32_t messageID, ByteView body) {
                              if (messageID != 7) return PortAnswer{};
                              const std::size_t third = body.size() / 3;
                              PortAnswer answer{copyOf(body.first(third))};
                              answer.shared =
                                  std::make_shared<const Bytes>(copyOf(body.subspan(third, third)));
                              answer.place = third;
                              append(answer.bytes, body.subspan(2 * third));
                              return answer;
                          }};
    const auto remote = connect(kName);
    Bytes memory;  // the previous reply's, which may be longer or shorter
    for (const std::size_t length : {1, 4071, 4072, 4073, 4096, 16 << 20, 65536}) {
        Bytes body(length, std::byte{1});
        for (std::size_t i = 0; i < length; i += 101) body[i] = static_cast<std::byte>(i / 256);
        PortRequest asked = request(ByteView{body}.subspan(length / 3));
        asked.secret = ByteView{body}.first(length / 3);
        asked.replyMemory = std::move(memory);
        PortReply reply = remote->send(std::move(asked));
        ASSERT_TRUE(reply.body) << length << ", status " << reply.status;
        EXPECT_TRUE(*reply.body == body) << length;
        memory = *std::move(reply.body);
    }
    const std::string largest(kLargestBody, '\0');
    PortRequest asked = request(bytesOf(largest));
    asked.messageID = 3;
    const PortReply empty = remote->send(asked);
    EXPECT_EQ(empty.status, kPortSuccess);
    EXPECT_FALSE(empty.body);
}

TEST_F(PortContract, OverTheBoundIsRefusedAndThePortStaysGood) {
    std::atomic<int> calls = 0;
    const ServedPort port{
        open, [&](std::int32_t, ByteView) { return Bytes(++calls == 1 ? kLargestBody + 1 : 5); }};
    const auto remote = connect(kName);
    const std::string tooLong(kLargestBody + 1, '\0');
    EXPECT_EQ(remote->send(request(bytesOf(tooLong))).status, kPortTransportError);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(remote->send(request({})).status, kPortTransportError);
    EXPECT_EQ(remote->send(request({})).body->size(), 5U);
}

}  // namespace
}  // namespace quorvane

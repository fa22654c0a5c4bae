// Message ports: both ends.
#include "platform/macos/ports/MessagePortsMacOS.hpp"
#include "tests/macos_runtime/MacTest.hpp"
#include "tests/macos_runtime/fakes/SystemFakes.hpp"

namespace quorvane {
namespace {

using PortsMacOSTest = macrt::MacTest;

TEST_F(PortsMacOSTest, ARequestGoesOutAndItsReplyComesBack) {
    std::vector<macrt::PortMessage> asked;
    macrt::servePort("group.port", [&](const macrt::PortMessage& message) -> macrt::PortAnswer {
        asked.push_back(message);
        return {0, "reply"};
    });
    const ConnectPort connect = makeConnectPortMacOS();
    EXPECT_EQ(connect("group.other"), nullptr);
    @autoreleasepool {
        const auto port = connect("group.port");
        ASSERT_NE(port, nullptr);
        const PortReply reply = port->send({.messageID = 40,
                                            .secret = bytesOf("quest"),
                                            .body = bytesOf("ion"),
                                            .sendTimeout = std::chrono::milliseconds{1500},
                                            .receiveTimeout = std::chrono::seconds{2},
                                            .awaitsReply = true});
        EXPECT_EQ(reply.status, 0);
        ASSERT_TRUE(reply.body);
        EXPECT_EQ(textOf(*reply.body), "reply");
        EXPECT_EQ(macrt::lastRequest(), std::string(5, '\0') + "ion");  // the secret is wiped
        EXPECT_FALSE(port->send({.messageID = 41}).body);
    }
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[0].identifier, 40);
    EXPECT_EQ(asked[0].body, "question");
    EXPECT_EQ(asked[0].sendTimeout, 1.5);
    EXPECT_EQ(asked[0].receiveTimeout, 2);
    EXPECT_TRUE(asked[0].awaitsReply);
    EXPECT_FALSE(asked[1].awaitsReply);
}

TEST_F(PortsMacOSTest, FailuresHaveTheirNumbers) {
    std::int32_t status = -2;
    macrt::servePort("group.port", [&](auto&) -> macrt::PortAnswer { return {status, "late"}; });
    const auto port = makeConnectPortMacOS()("group.port");
    for (status = -5; status < 0; ++status) {
        const PortReply reply = port->send({.messageID = 1, .awaitsReply = true});
        EXPECT_EQ(reply.status, status);
        EXPECT_FALSE(reply.body);
    }
    macrt::servePort("group.port", [](auto&) -> macrt::PortAnswer { return {0, ""}; });
    EXPECT_EQ(port->send({.awaitsReply = true}).status, 0);
    EXPECT_FALSE(port->send({.awaitsReply = true}).body);
    macrt::stopServing("group.port");
    EXPECT_EQ(port->send({}).status, kPortTransportError);
}

TEST_F(PortsMacOSTest, APortMayGoWhileItWaits) {
    std::unique_ptr<RemotePort> port;
    macrt::servePort("group.port", [&](auto&) -> macrt::PortAnswer {
        port = nullptr;
        return {kPortBecameInvalid, {}};
    });
    port = makeConnectPortMacOS()("group.port");
    EXPECT_EQ(port->send({.awaitsReply = true}).status, kPortBecameInvalid);
}

TEST_F(PortsMacOSTest, ServesUntilItIsStopped) {
    const OpenPort open = makeOpenPortMacOS();
    auto port = open("group.port", [&](std::int32_t messageID, ByteView body) {
        if (messageID == 2) return Bytes{};
        return copyOf(bytesOf(std::to_string(messageID) + std::string{textOf(body)}));
    });
    ASSERT_NE(port, nullptr);
    // This process has the name already.
    EXPECT_EQ(open("group.port", nullptr), nullptr);
    macrt::setAnswer("name is taken", true);
    EXPECT_EQ(open("group.taken", nullptr), nullptr);
    macrt::whileRunning() = [&] {
        EXPECT_EQ(macrt::callPort("group.port", 7, "x"), "7x");
        EXPECT_EQ(macrt::callPort("group.port", 2, ""), "");
        EXPECT_EQ(macrt::callPort("group.port", 3, ""), "3");
        port->stop();
    };
    port->run();
    EXPECT_FALSE(macrt::callPort("group.port", 7, ""));
    port = nullptr;
    drainPool();
    step("the name is free");
    macrt::setAnswer("name is taken", false);
    EXPECT_NE(open("group.port", nullptr), nullptr);
    step("a stop before the run is not forgotten");
    port = open("group.port", nullptr);
    port->stop();
    port->run();
}

}  // namespace
}  // namespace quorvane

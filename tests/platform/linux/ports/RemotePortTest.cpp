// The client against servers that die, trickle, lie or run as another user.
#include "platform/linux/ports/RemotePortLinux.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/linux/ports/LocalPortLinux.hpp"
#include "tests/platform/linux/ports/PortTools.hpp"
#include "tests/support/ForkedChild.hpp"

namespace quorvane {
namespace {

TEST(SocketFrame, HeadersAreTheseBytes) {
    using namespace std::string_view_literals;
    const RequestHeader asked{0x0123, -2, true, 0x0102030405060708};
    EXPECT_EQ(textOf(encode(asked)),
              "QVrq\x23\x01\0\0\xFE\xFF\xFF\xFF\x01\0\0\0\x08\x07\x06\x05\x04\x03\x02\x01"sv);
    EXPECT_EQ(decodeRequestHeader(encode(asked)), asked);
    const ReplyHeader told{0x0123, 0, 9};
    EXPECT_EQ(textOf(encode(told)), "QVrp\x23\x01\0\0\0\0\0\0\0\0\0\0\x09\0\0\0\0\0\0\0"sv);
    EXPECT_EQ(decodeReplyHeader(encode(told)), told);
}

class RemotePortTest : public testing::Test {
protected:
    // The client's send, while the test acts as the server. The body outlives it.
    std::future<PortReply> sendLater(PortRequest asked) {
        return std::async(std::launch::async, [this, asked] { return remote->send(asked); });
    }
    void reconnect() {
        remote = makeConnectPortLinux(folder.path())(kName);
        client = server.accept();
    }

    TemporaryFolder folder;
    BareServer server{folder.path()};
    std::unique_ptr<RemotePort> remote = makeConnectPortLinux(folder.path())(kName);
    BareSocket client = server.accept();
};

TEST_F(RemotePortTest, SendsOneFrameARequestWithRisingNumbers) {
    for (std::uint64_t sequence = 1; sequence <= 2; ++sequence) {
        auto reply = sendLater(request(bytesOf("ask")));
        EXPECT_EQ(client.receive(27), requestFrame(sequence, bytesOf("ask")));
        client.sendAll(replyFrame(sequence, bytesOf("told")));
        EXPECT_EQ(textIn(reply.get()), "told");
    }
    remote->send({.messageID = 7, .body = bytesOf("x"), .sendTimeout = 1s});
    EXPECT_EQ(client.receive(25), requestFrame(3, bytesOf("x"), false));
}

TEST_F(RemotePortTest, AServerThatDiesWhileTheReplyIsAwaited) {
    for (const std::size_t part : {0, 10, 24, 40}) {  // of the reply, before the end
        auto reply = sendLater(request({}));
        client.receive(24);
        client.sendAll(ByteView{replyFrame(1, Bytes(5000))}.first(part));
        client.close();
        EXPECT_EQ(reply.get().status, kPortBecameInvalid) << part;
        EXPECT_EQ(remote->send(request({})).status, kPortIsInvalid);
        reconnect();
    }
}

TEST_F(RemotePortTest, CancellingEndsTheWaitAtOnceAndForGood) {
    auto reply = sendLater(request({}));
    client.receive(24);
    remote->cancel();
    EXPECT_EQ(reply.get().status, kPortBecameInvalid);
    remote->cancel();
    EXPECT_EQ(remote->send(request({})).status, kPortIsInvalid);
}

TEST_F(RemotePortTest, AServerThatDiesOrSleepsWhileTheRequestIsSent) {
    const std::string body(8 << 20, '\0');
    EXPECT_EQ(remote->send(request(bytesOf(body), 10ms)).status, kPortSendTimeout);
    EXPECT_EQ(remote->send(request({})).status, kPortIsInvalid);  // no frame follows half a frame
    reconnect();
    auto reply = sendLater(request(bytesOf(body)));
    client.receive(1 << 20);
    client.close();
    EXPECT_EQ(reply.get().status, kPortTransportError);
    EXPECT_EQ(remote->send(request({})).status, kPortIsInvalid);
}

TEST_F(RemotePortTest, SmallRequestsThatNobodyReadsAreTakenUntilTheSocketIsFull) {
    const PortRequest told{.messageID = 7, .body = bytesOf("told"), .sendTimeout = 5ms};
    std::int32_t status = kPortSuccess;
    std::uint64_t taken = 0;
    for (; (status = remote->send(told).status) == kPortSuccess; ++taken) ASSERT_LT(taken, 100000U);
    EXPECT_EQ(status, kPortSendTimeout);
    // No part of the request that timed out was sent: the next one arrives whole.
    for (std::uint64_t sequence = 1; sequence <= taken; ++sequence)
        ASSERT_EQ(client.receive(28), requestFrame(sequence, bytesOf("told"), false));
    EXPECT_EQ(remote->send(told).status, kPortSuccess);
    EXPECT_EQ(client.receive(28), requestFrame(taken + 1, bytesOf("told"), false));
}

TEST_F(RemotePortTest, AReplyThatTricklesInIsTooLateAllTheSame) {
    std::promise<void> isOver;
    const Bytes reply = replyFrame(1, Bytes(10000));
    std::thread trickler{[&, end = isOver.get_future()] {  // each pause is shorter than the limit
        for (std::size_t i = 0; end.wait_for(5ms) != std::future_status::ready; ++i)
            client.sendAll(ByteView{reply}.subspan(i, 1));
    }};
    const auto begin = std::chrono::steady_clock::now();
    PortRequest asked = request({});
    asked.receiveTimeout = 100ms;
    EXPECT_EQ(remote->send(asked).status, kPortReceiveTimeout);
    const auto time = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(time, 100ms);
    EXPECT_LT(time, 5s);  // the whole reply takes fifty seconds
    isOver.set_value();
    trickler.join();
}

// The kernel rejects a million microseconds or more, and the socket then has no limit.
TEST(RemotePortLimit, AMomentLessThanASecondHasFewerThanAMillionMicroseconds) {
    const timeval limit = timevalUpTo(1s - 1ns);
    EXPECT_EQ(limit.tv_sec, 1);
    EXPECT_EQ(limit.tv_usec, 0);
}

TEST_F(RemotePortTest, WithNoTimeAtAllOnlyWhatIsThereCounts) {
    client.sendAll(replyFrame(1, bytesOf("ready")));
    EXPECT_EQ(textIn(remote->send({.body = {}, .awaitsReply = true})), "ready");
    EXPECT_EQ(remote->send({.body = {}, .awaitsReply = true}).status, kPortReceiveTimeout);
}

TEST_F(RemotePortTest, RepliesThatBreakARuleEndTheConnection) {
    FrameHeader wrongMagic = encode(ReplyHeader{0, 0, 1});
    wrongMagic[3] = std::byte{'q'};
    FrameHeader wrongZero = encode(ReplyHeader{0, 0, 1});
    wrongZero[13] = std::byte{1};
    const FrameHeader cases[] = {wrongMagic,
                                 wrongZero,
                                 encode(ReplyHeader{kLargestBody + 1, 0, 1}),
                                 encode(ReplyHeader{0xFFFFFFFF, 0, 1}),
                                 encode(ReplyHeader{0, 1, 1}),
                                 encode(ReplyHeader{5, kPortTransportError, 1}),
                                 encode(ReplyHeader{0, 0, 2})};  // to a request that was never sent
    for (const FrameHeader& header : cases) {
        client.sendAll(frame(header));
        EXPECT_EQ(remote->send(request({})).status, kPortTransportError) << &header - cases;
        EXPECT_TRUE(client.isClosed());
        reconnect();
    }
}

TEST_F(RemotePortTest, SkipsWhatIsLeftOfALateReplyInEveryCut) {
    Bytes late = replyFrame(1, Bytes(6000, std::byte{'l'}));
    append(late, replyFrame(2, bytesOf("now")));
    for (const std::size_t cut : {1, 24, 25, 4096, 4120, 6023, 6024, 6030}) {
        client.sendAll(ByteView{late}.first(cut));
        PortRequest first = request({});
        first.receiveTimeout = {};
        const PortReply early = remote->send(first);
        EXPECT_EQ(early.status, cut < 6024 ? kPortReceiveTimeout : kPortSuccess) << cut;
        client.sendAll(ByteView{late}.subspan(cut));
        EXPECT_EQ(textIn(remote->send(request({}))), "now") << cut;
        reconnect();
    }
}

TEST(RemotePortLookup, AFullQueueOfAStuckServerIsNoPort) {
    const TemporaryFolder folder;
    const BareServer server{folder.path(), 0};
    const auto connectPort = makeConnectPortLinux(folder.path());
    const auto first = connectPort(kName);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(connectPort(kName), nullptr);
}

TEST(RemotePortLookup, TheFolderMustBeAPrivateOneOfTheUsersOwn) {
    const TemporaryFolder folder;
    const BareServer server{folder.path()};
    const auto connects = [](const std::filesystem::path& path) {
        return makeConnectPortLinux(path)(kName) != nullptr;
    };
    EXPECT_TRUE(connects(folder.path()));
    chmod(folder.path().c_str(), 0710);
    EXPECT_FALSE(connects(folder.path()));
    chmod(folder.path().c_str(), 0700);
    const TemporaryFolder other;
    std::filesystem::create_symlink(folder.path(), other / "link");
    EXPECT_FALSE(connects(other / "link"));
    EXPECT_FALSE(connects(""));
    EXPECT_FALSE(connects(other / "missing"));
    for (const char* name : {"", ".", "..", "a/b"})
        EXPECT_EQ(makeConnectPortLinux(folder.path())(name), nullptr) << name;

    const auto serves = [](const std::filesystem::path& path) {
        return makeOpenPortLinux(path)("served", echo) != nullptr;
    };
    EXPECT_FALSE(serves(other / "link"));
    EXPECT_FALSE(serves(other / "missing/below"));
    EXPECT_TRUE(serves(other / "made"));
    chmod((other / "made").c_str(), 0755);
    EXPECT_TRUE(serves(other / "made"));
    EXPECT_EQ(modeOf(other / "made"), 0700);
}

TEST(RemotePortLookup, LongFoldersAreReachedAllTheSame) {
    const TemporaryFolder folder;
    auto path = folder.path();
    for (int i = 0; i < 4; ++i) path /= std::string(60, 'd');
    std::filesystem::create_directories(path);
    chmod(path.c_str(), 0700);
    const ServedPort port{makeOpenPortLinux(path), echo};
    EXPECT_EQ(textIn(makeConnectPortLinux(path)(kName)->send(request(bytesOf("far")))), "far");
    EXPECT_TRUE(std::filesystem::is_socket(path / kName));
}

// A process of another user, at the socket of this name with `use`, connect or bind.
std::unique_ptr<ForkedChild> somebodyElse(const std::filesystem::path& path,
                                          decltype(&::connect) use,
                                          std::function<std::string(int socket)> act) {
    return std::make_unique<ForkedChild>([=](const ForkedChild::Say& say) {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        path.native().copy(address.sun_path, sizeof address.sun_path - 1);
        const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
        if (setuid(65534) != 0 ||
            use(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            return 1;
        say(act(socket));
        pause();
        return 0;
    });
}

// Needs the rights to act as another user.
TEST(PeerCheck, TheOtherSideMustBeTheSameUser) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can act as two users";
    const TemporaryFolder folder;
    chmod(folder.path().c_str(), 0777);
    // A server of another user under our name. The folder is made private again behind it.
    const auto impostor = somebodyElse(folder / kName, ::bind, [](int socket) {
        return listen(socket, 8) == 0 ? "listens" : "does not listen";
    });
    ASSERT_EQ(impostor->line(), "listens");
    chmod(folder.path().c_str(), 0700);
    EXPECT_EQ(makeConnectPortLinux(folder.path())(kName), nullptr);

    // And a client of another user, for whom the folder and the socket are made accessible.
    std::atomic<int> calls = 0;
    const auto port = makeOpenPortLinux(folder.path())("ours", [&](std::int32_t, ByteView) {
        ++calls;
        return Bytes{};
    });
    ASSERT_NE(port, nullptr);
    chmod(folder.path().c_str(), 0777);
    chmod((folder / "ours").c_str(), 0777);
    const auto stranger = somebodyElse(folder / "ours", ::connect, [](int socket) {
        const Bytes asked = requestFrame(1, bytesOf("let me in"));
        send(socket, asked.data(), asked.size(), MSG_NOSIGNAL);
        std::byte answer;
        const ssize_t count = recv(socket, &answer, 1, 0);
        return count == 0 || (count < 0 && errno == ECONNRESET) ? "closed" : "answered";
    });
    std::thread runs{[&] { port->run(); }};
    EXPECT_EQ(stranger->line(), "closed");
    port->stop();
    runs.join();
    EXPECT_EQ(calls, 0);
}

}  // namespace
}  // namespace quorvane

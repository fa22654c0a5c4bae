// The server against clients that send junk or half a frame, never read, crowd, or die.
#include "platform/linux/ports/LocalPortLinux.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "tests/platform/linux/ports/PortTools.hpp"
#include "tests/support/ForkedChild.hpp"

namespace quorvane {
namespace {

std::size_t openDescriptors() {
    const std::filesystem::directory_iterator entries{"/proc/self/fd"};
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

class LocalPortTest : public testing::Test {
protected:
    void serve(PortLimits limits = {}) {
        port = std::make_unique<ServedPort>(
            makeOpenPortLinux(folder.path(), limits), [this](std::int32_t, ByteView body) {
                ++calls;
                return body.size() == 1 ? Bytes(replySize) : copyOf(body);
            });
        remote = connectPort(kName);
        expectService();
    }
    // The same client is served as before.
    void expectService() {
        ASSERT_NE(remote, nullptr);
        EXPECT_EQ(textIn(remote->send(request(bytesOf("still there")))), "still there");
    }
    BareSocket bareClient() const { return BareSocket::connectedTo(folder.path()); }
    // To a client's first request.
    static void expectReply(const BareSocket& client, std::string_view text) {
        client.sendAll(requestFrame(1, bytesOf(text)));
        EXPECT_EQ(client.receive(24 + text.size()), replyFrame(1, bytesOf(text)));
    }

    TemporaryFolder folder;
    ConnectPort connectPort = makeConnectPortLinux(folder.path());
    std::size_t replySize = 2 << 20;  // to a request of one byte
    std::atomic<int> calls = 0;
    std::unique_ptr<ServedPort> port;
    std::unique_ptr<RemotePort> remote;
};

TEST_F(LocalPortTest, WhatBreaksARuleLosesItsConnectionUnanswered) {
    serve();
    FrameHeader wrongMagic = encode(RequestHeader{4, 7, true, 1});
    wrongMagic[0] = std::byte{'q'};
    FrameHeader unknownFlag = encode(RequestHeader{4, 7, true, 1});
    unknownFlag[12] = std::byte{3};
    const FrameHeader cases[] = {wrongMagic,
                                 unknownFlag,
                                 encode(RequestHeader{kLargestBody + 1, 7, true, 1}),
                                 encode(RequestHeader{0xFFFFFFFF, 7, true, 1}),
                                 encode(RequestHeader{4, 7, true, 0}),
                                 encode(RequestHeader{4, 7, true, 2})};
    calls = 0;
    for (const FrameHeader& header : cases) {
        const BareSocket client = bareClient();
        client.sendAll(frame(header, bytesOf("junk")));
        EXPECT_TRUE(client.isClosed()) << &header - cases;
    }
    const BareSocket client = bareClient();
    expectReply(client, "ok");
    client.sendAll(requestFrame(1, bytesOf("again the same number")));
    EXPECT_TRUE(client.isClosed());
    EXPECT_EQ(calls, 1);
    expectService();
}

TEST_F(LocalPortTest, RequestsMayComeInAnyPiecesAndSeveralAtOnce) {
    serve();
    Bytes stream;
    Bytes expected;
    std::uint64_t sequence = 0;
    for (const std::size_t length : {0, 3, 4000, 4096, 4200, 9000, 5}) {
        const Bytes body(length, std::byte{'b'});
        append(stream, requestFrame(++sequence, body));
        append(stream, requestFrame(++sequence, body, false));
        append(expected, replyFrame(sequence - 1, body));
    }
    const BareSocket whole = bareClient();
    whole.sendAll(stream);
    EXPECT_EQ(whole.receive(expected.size()), expected);
    const BareSocket pieces = bareClient();
    for (std::size_t place = 0; place < stream.size(); place += 7)
        pieces.sendAll(ByteView{stream}.subspan(place, std::min(7UL, stream.size() - place)));
    EXPECT_EQ(pieces.receive(expected.size()), expected);
}

TEST_F(LocalPortTest, HalfRequestsHoldNobodyUpAndAreClosedInTime) {
    serve({.requestTime = 100ms});
    const Bytes whole = requestFrame(1, Bytes(100000));
    std::vector<BareSocket> clients;
    for (const std::size_t part : {1, 23, 24, 30, 4096, 99999}) {
        clients.push_back(bareClient());
        clients.back().sendAll(ByteView{whole}.first(part));
        expectService();
    }
    const BareSocket silent = bareClient();  // between requests there is no limit
    for (const BareSocket& client : clients) EXPECT_TRUE(client.isClosed());
    expectReply(silent, "late but whole");
    expectService();
}

TEST_F(LocalPortTest, RepliesThatNobodyReadsHoldNobodyUpAndAreDroppedInTime) {
    serve({.replyTime = 100ms});
    std::vector<BareSocket> clients;
    for (int i = 0; i < 3; ++i) {
        clients.push_back(bareClient());
        // Nothing more is read from a client before it has taken its reply.
        clients.back().sendAll(requestFrame(1, bytesOf("!")));
        clients.back().sendAll(requestFrame(2, bytesOf("!")));
        EXPECT_TRUE(clients.back().waitFor(POLLIN));
        expectService();
    }
    port->stop();  // every call is counted when the thread has ended
    EXPECT_EQ(calls, 3 + 4);
    port.reset();

    serve({.replyTime = 100ms});
    const BareSocket client = bareClient();
    client.sendAll(requestFrame(1, bytesOf("!")));
    EXPECT_TRUE(client.waitFor(POLLHUP));
    EXPECT_LT(client.receive(3 << 20).size(), replySize);
}

TEST_F(LocalPortTest, LongBodiesOfAllClientsTogetherAreBounded) {
    constexpr std::size_t kBound = 4 << 20;  // half of it exceeds the kernel's buffers
    replySize = kBound / 2 + 1;
    serve({.bodyBytes = kBound});
    // One client reserves all of it, and has not sent its whole body yet.
    BareSocket first = bareClient();
    first.sendAll(frame(encode(RequestHeader{kBound, 7, true, 1}), Bytes(5000)));
    const auto isAnswered = [&] {
        const BareSocket client = bareClient();
        client.sendAll(requestFrame(1, Bytes(5000)));
        return client.receive(5024).size() == 5024;
    };
    while (isAnswered()) {  // until the server has read the first client's header
    }
    expectService();  // short requests are still served
    first.close();
    while (!isAnswered()) {
    }

    // Replies count too: there is no room for two.
    const BareSocket fourth = bareClient();
    fourth.sendAll(requestFrame(1, bytesOf("!")));
    EXPECT_TRUE(fourth.waitFor(POLLIN));
    expectService();
    const BareSocket fifth = bareClient();
    fifth.sendAll(requestFrame(1, bytesOf("!")));
    EXPECT_TRUE(fifth.waitFor(POLLHUP));
    EXPECT_LT(fifth.receive(replySize + 24).size(), replySize);
    EXPECT_EQ(fourth.receive(replySize + 24).size(), replySize + 24);
    expectService();
}

TEST_F(LocalPortTest, ACrowdOfOneProcessDoesNotPushOutAnother) {
    ForkedChild crowd{[&](const ForkedChild::Say& say) {
        sigset_t go;
        sigemptyset(&go);
        sigaddset(&go, SIGUSR1);
        sigprocmask(SIG_BLOCK, &go, nullptr);
        say("ready");
        int number = 0;
        sigwait(&go, &number);
        std::vector<std::unique_ptr<RemotePort>> ports;
        for (int i = 0; i < 300; ++i) {
            auto made = connectPort(kName);
            if (made == nullptr) continue;
            made->send(request({}));
            ports.push_back(std::move(made));
        }
        say(ports.back()->send(request(bytesOf("in"))).body ? "served" : "not served");
        say(ports.front()->send(request({})).status == kPortIsInvalid ? "pushed out" : "kept");
        pause();
        return 0;
    }};
    ASSERT_EQ(crowd.line(), "ready");
    serve({.connections = 16});
    const std::size_t before = openDescriptors();
    crowd.signal(SIGUSR1);
    EXPECT_EQ(crowd.line(), "served");
    EXPECT_EQ(crowd.line(), "pushed out");
    expectService();
    EXPECT_LE(openDescriptors(), before + 16);
}

TEST_F(LocalPortTest, DescriptorsThatAreSentAlongAreDropped) {
    serve();
    const BareSocket client = bareClient();
    expectReply(client, "hello");
    const std::size_t before = openDescriptors();
    Bytes asked = requestFrame(2, bytesOf("with luggage"));
    int luggage[100];
    std::ranges::fill(luggage, client.get());
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof luggage)] = {};
    iovec part{asked.data(), asked.size()};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    cmsghdr* const header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof luggage);
    std::memcpy(CMSG_DATA(header), luggage, sizeof luggage);
    EXPECT_GT(sendmsg(client.get(), &message, MSG_NOSIGNAL), 0);
    EXPECT_EQ(client.receive(36), replyFrame(2, bytesOf("with luggage")));
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(LocalPortTest, WithoutFreeDescriptorsItWaitsForBetterTimes) {
    serve();
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const BareSocket waiting{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    const rlimit tight{.rlim_cur = static_cast<rlim_t>(waiting.get()) + 1,
                       .rlim_max = limit.rlim_max};
    std::vector<FileDescriptor> gaps;  // lower numbers that are still free
    while (gaps.empty() || gaps.back().get() < waiting.get()) gaps.emplace_back(dup(0));
    gaps.pop_back();
    const auto open = PortFolder::open(folder.path(), PortFolder::Purpose::look);
    const auto address = open->address(kName);
    setrlimit(RLIMIT_NOFILE, &tight);
    EXPECT_EQ(connect(waiting.get(), address->get(), address->length), 0);
    expectService();
    expectService();
    setrlimit(RLIMIT_NOFILE, &limit);
    expectReply(waiting, "at last");
}

TEST(LocalPortName, IsFreeTheMomentItsHolderIsKilled) {
    const TemporaryFolder folder;
    const auto openPort = makeOpenPortLinux(folder.path());
    ForkedChild holder{[&](const ForkedChild::Say& say) {
        const auto port = openPort(kName, echo);
        say(port != nullptr ? "holds" : "failed");
        port->run();
        return 0;
    }};
    ASSERT_EQ(holder.line(), "holds");
    EXPECT_EQ(openPort(kName, echo), nullptr);
    const auto remote = makeConnectPortLinux(folder.path())(kName);
    EXPECT_EQ(textIn(remote->send(request(bytesOf("alive")))), "alive");
    holder.signal(SIGKILL);
    holder.wait();
    EXPECT_EQ(remote->send(request({})).status, kPortIsInvalid);
    EXPECT_TRUE(std::filesystem::is_socket(folder / kName));  // left behind
    EXPECT_EQ(makeConnectPortLinux(folder.path())(kName), nullptr);
    const ServedPort next{openPort, echo};
    EXPECT_EQ(textIn(makeConnectPortLinux(folder.path())(kName)->send(request(bytesOf("next")))),
              "next");
}

TEST(LocalPortName, TakesThePlaceOfWhateverStandsThereButFollowsNoLink) {
    const TemporaryFolder folder;
    const auto openPort = makeOpenPortLinux(folder.path());
    folder.write("precious", "data");
    std::filesystem::create_symlink(folder / "precious", folder / kName);
    EXPECT_NE(openPort(kName, echo), nullptr);
    EXPECT_EQ(folder.read("precious"), "data");
    EXPECT_FALSE(std::filesystem::exists(folder / kName));  // gone with its port

    const std::string lock = std::string{kName} + ".lock";
    std::filesystem::remove(folder / lock);
    std::filesystem::create_symlink(folder / "precious", folder / lock);
    EXPECT_EQ(openPort(kName, echo), nullptr);
    std::filesystem::remove(folder / lock);
    std::filesystem::create_directory(folder / kName);
    EXPECT_EQ(openPort(kName, echo), nullptr);
    std::filesystem::remove(folder / kName);

    const auto port = openPort(kName, echo);
    ASSERT_NE(port, nullptr);
    EXPECT_EQ(modeOf(folder / kName), 01600);
    EXPECT_EQ(modeOf(folder / lock), 01600);
    port->stop();
    port->run();  // stopped before it ran
}

}  // namespace
}  // namespace quorvane

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "platform/linux/bus/NoticesLinux.hpp"
#include "tests/support/ForkedChild.hpp"
#include "tests/support/LoopRunner.hpp"
#include "tests/support/PrivateBus.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

constexpr char kName[] = "example.quillon.Quorvane.LockScreenAddOn.status";
constexpr char kOther[] = "example.quillon.Quorvane.LockScreenAddOn.quit";
constexpr char kLocked[] = "com.apple.screenIsLocked";

struct NoticesTest : testing::Test {
    PrivateBus privateBus;
    RecordingLog recording;
    Logger log{recording.sink(), "example.quillon.Quorvane.Platform", "bus"};
    EventLoop loop;
    SessionBus bus{loop, log};
    LocalNotices local{loop.mainThread()};
    DistributedNotices distributed = makeDistributedNotices(bus, local, log);
    DarwinNotices darwin = makeDarwinNotices(bus, log);
    Lines trail;
    std::vector<PropertyDictionary> heard;

    NoticesTest() { privateBus.useHere(); }
    // Returns when everything sent so far has arrived.
    void settle() {
        const Handle done = darwin.observe("settled", [this] { loop.quit(0); });
        darwin.post("settled");
        loop.run();
    }
    DistributedNotices::Handler note(const char* text) {
        return [this, text](const PropertyDictionary&) { trail.push_back(text); };
    }
    Lines takeSettled() {
        settle();
        return std::exchange(trail, {});
    }
};

// Distributed and Darwin notices are separate.
TEST_F(NoticesTest, AreHeardByNameAndUntilTheHandleGoes) {
    Handle first;
    first = distributed.observe(kName, [&](const PropertyDictionary&) {
        trail.push_back("first");
        first.reset();
    });
    Handle second = distributed.observe(kName, note("second"));
    const Handle other = distributed.observe(kOther, note("other"));
    const Handle ofDarwin = darwin.observe(kName, [this] { trail.push_back("darwin"); });
    distributed.post(kName, {});
    distributed.post(kName, {});
    EXPECT_TRUE(trail.empty());
    Lines names = takeSettled();
    std::ranges::sort(names);
    EXPECT_EQ(names, (Lines{"first", "second", "second"}));
    second.reset();
    distributed.post(kName, {});
    {
        // The last notice arrives although its sender ends at once.
        SessionBus brief{loop, log};
        makeDarwinNotices(brief, log).post(kName);
    }
    settle();
    EXPECT_EQ(takeSettled(), Lines{"darwin"});
}

TEST_F(NoticesTest, CarryEveryTypeAndLogWhatTheBusCannot) {
    const PropertyDictionary everyType{
        {"connected", {true}},
        {"version", {std::string{"1.2.3 – „ü“"}}},
        {"number", {std::int64_t{-5'000'000'000}}},
        {"real", {0.1}},
        {"list", {PropertyArray{{std::int64_t{1}}, {std::string{""}}, {PropertyArray{}}}}},
        {"nested", {PropertyDictionary{{"flag", {false}}}}},
        {"empty", {PropertyDictionary{}}}};
    const Handle handle = distributed.observe(
        kName, [&](const PropertyDictionary& userInfo) { heard.push_back(userInfo); });
    distributed.post(kName, {{"text", {std::string{"\xff\xfe"}}}});
    distributed.post(kName, {{"text", {std::string("a\0b", 3)}}});
    distributed.post(kName, {{std::string("k\0", 2), {true}}});
    distributed.post(kName, {{"data", {Bytes{}}}});
    EXPECT_EQ(recording.take().size(), 4u);
    EXPECT_FALSE(distributed.observe("a'b", note("")));
    distributed.post(kName, everyType);
    settle();
    EXPECT_EQ(heard, std::vector{everyType});
}

// Signals as other programs, in other languages, may encode them.
TEST_F(NoticesTest, ForeignSignalsAreReadOrDropped) {
    const Handle handle = distributed.observe(
        kName, [&](const PropertyDictionary& userInfo) { heard.push_back(userInfo); });
    const auto emit = [&](const char* types, auto... values) {
        EXPECT_GE(sd_bus_emit_signal(bus.connection(), kNoticePath, kNoticeInterface, "Notice",
                                     types, values...),
                  0);
    };
    emit("sa{sv}", kName, 7, "byte", "y", 200, "small", "n", -2, "unsigned", "u", 4'000'000'000u,
         "huge", "t", UINT64_MAX, "path", "o", "/a", "texts", "as", 2, "a", "b", "bytes", "ay", 1,
         2);
    emit("s", kName);
    emit("sa{ss}", kName, 1, "a", "b");
    emit("sa{sv}", kName, 1, "map", "a{is}", 1, 5, "five");
    settle();
    const PropertyDictionary first{
        {"byte", {std::int64_t{200}}},
        {"small", {std::int64_t{-2}}},
        {"unsigned", {std::int64_t{4'000'000'000}}},
        {"path", {std::string{"/a"}}},
        {"texts", {PropertyArray{{std::string{"a"}}, {std::string{"b"}}}}}};
    EXPECT_EQ(heard, (std::vector{first, PropertyDictionary{}}));
    EXPECT_EQ(recording.take().size(), 2u);
}

TEST_F(NoticesTest, NobodyOnTheBusForgesALock) {
    const Handle locked = distributed.observe(kLocked, note("locked"));
    Handle once;
    once = distributed.observe(kLocked, [&](const PropertyDictionary&) {
        once.reset();
        trail.push_back("once");
    });
    Handle travels = bus.match(std::string{"type='signal',arg0='"} + kLocked + "'",
                               [&](sd_bus_message*) { trail.push_back("travels"); });
    distributed.post(kLocked, {});
    EXPECT_EQ(takeSettled(), Lines{});
    travels.reset();
    sd_bus_emit_signal(bus.connection(), kNoticePath, kNoticeInterface, "Notice", "sa{sv}", kLocked,
                       0);
    EXPECT_EQ(takeSettled(), Lines{});
    local.deliver(kLocked);
    local.deliver(kLocked);
    local.deliver("com.apple.screenIsUnlocked");
    EXPECT_TRUE(trail.empty());
    EXPECT_EQ(takeSettled(), (Lines{"locked", "once", "locked"}));
}

TEST_F(NoticesTest, ABusMayComeLater) {
    privateBus.kill();
    const Handle handle = darwin.observe(kName, [this] { trail.push_back("heard"); });
    darwin.post(kName);
    EXPECT_EQ(recording.take().size(), 1u);
    // The connection is restored without a request.
    privateBus.start();
    ASSERT_TRUE(runUntil(loop, [this] { return !recording.lines().empty(); }));
    EXPECT_EQ(recording.take(), Lines{"bus: the session bus is back"});
    darwin.post(kName);
    EXPECT_EQ(takeSettled(), Lines{"heard"});
    privateBus.kill();
    ASSERT_TRUE(runUntil(loop, [this] { return !recording.lines().empty(); }));
    darwin.post(kName);
    EXPECT_EQ(recording.take(), (Lines{"bus: the session bus went away"}));
}

TEST_F(NoticesTest, AnotherUsersBusIsRefused) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can act as another user";
    const TemporaryFolder folder;
    const std::string path = folder / "bus";
    ForkedChild other{[&](const ForkedChild::Say& say) {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
        const bool isBound =
            bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
        // The peer's user is the one that calls listen.
        if (!isBound || setuid(65534) != 0 || listen(listener, 1) != 0) return 1;
        say("listening");
        while (true) pause();
    }};
    ASSERT_EQ(other.line(), "listening");
    setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + path).c_str(), 1);
    EXPECT_EQ(bus.connection(), nullptr);
    EXPECT_EQ(recording.take(), (Lines{"bus: no session bus: Operation not permitted (error 1)"}));
}

}  // namespace
}  // namespace quorvane

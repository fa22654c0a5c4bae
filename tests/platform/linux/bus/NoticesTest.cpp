#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <optional>

#include "platform/linux/bus/NoticesLinux.hpp"
#include "tests/support/ForkedChild.hpp"
#include "tests/support/PrivateBus.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

constexpr char kName[] = "example.quillon.Quorvane.LockScreenAddOn.status";
constexpr char kOther[] = "example.quillon.Quorvane.LockScreenAddOn.quit";
constexpr char kLocked[] = "com.apple.screenIsLocked";

// One process's end of the notices.
struct Notices {
    RecordingLog recording;
    Logger log{recording.sink(), kPlatform, "bus"};
    EventLoop loop;
    SessionBus bus{loop, log};
    LocalNotices local{loop.mainThread()};
    DistributedNotices distributed = makeDistributedNotices(bus, local, log);
    DarwinNotices darwin = makeDarwinNotices(bus, log);

    // Ends `loop.run()` when the notice comes.
    Handle quitOn(const std::string& name) {
        return darwin.observe(name, [this] { loop.quit(0); });
    }
    // What was sent before has arrived when this returns.
    void settle() {
        const Handle done = quitOn("settled");
        darwin.post("settled");
        loop.run();
    }

    static constexpr char kPlatform[] = "example.quillon.Quorvane.Platform";
};

// Every type, so that a trip shows what changes on the way.
PropertyDictionary everyType() {
    return {{"connected", {true}},
            {"version", {std::string{"1.2.3 – „ü“"}}},
            {"number", {std::int64_t{-5'000'000'000}}},
            {"real", {0.1}},
            {"date", {WallTime{Duration{1'767'225'600'123'456'789}}}},
            {"data", {Bytes{std::byte{0}, std::byte{255}}}},
            {"list", {PropertyArray{{std::int64_t{1}}, {std::string{""}}, {PropertyArray{}}}}},
            {"nested", {PropertyDictionary{{"flag", {false}}}}},
            {"empty", {PropertyDictionary{}}}};
}

struct NoticesTest : testing::Test {
    PrivateBus privateBus;
    NoticesTest() { privateBus.useHere(); }
};

TEST_F(NoticesTest, TwoProcessesHearEachOther) {
    ASSERT_NE(privateBus.address(), "");
    ForkedChild other{[](const ForkedChild::Say& say) {
        Notices notices;
        const Handle request =
            notices.distributed.observe(kName, [&](const PropertyDictionary& userInfo) {
                // Sent back as it came.
                notices.distributed.post(kOther, userInfo);
            });
        const Handle end = notices.quitOn("end");
        notices.settle();
        say("observing");
        return notices.loop.run();
    }};
    ASSERT_EQ(other.line(), "observing");

    Notices notices;
    std::vector<PropertyDictionary> answers;
    const Handle answer =
        notices.distributed.observe(kOther, [&](const PropertyDictionary& userInfo) {
            answers.push_back(userInfo);
            notices.loop.quit(0);
        });
    for (const auto& userInfo : {everyType(), PropertyDictionary{}}) {
        notices.distributed.post(kName, userInfo);
        notices.loop.run();
    }
    EXPECT_EQ(answers, (std::vector{everyType(), PropertyDictionary{}}));
    notices.darwin.post("end");
    notices.settle();
    EXPECT_EQ(other.wait(), 0);
    EXPECT_TRUE(notices.recording.lines().empty());
}

// The kinds do not mix, and what is posted last is heard although the poster ends at once.
TEST_F(NoticesTest, OwnPostsAreHeardByNameAndUntilTheHandleGoes) {
    Notices notices;
    std::vector<std::string> trail;
    Handle first, second;
    first = notices.distributed.observe(kName, [&](const PropertyDictionary&) {
        trail.push_back("first");
        first.reset();
    });
    second = notices.distributed.observe(
        kName, [&](const PropertyDictionary&) { trail.push_back("second"); });
    const Handle other = notices.distributed.observe(
        kOther, [&](const PropertyDictionary&) { trail.push_back("other"); });
    const Handle darwin = notices.darwin.observe(kName, [&] { trail.push_back("darwin"); });
    notices.distributed.post(kName, {});
    notices.distributed.post(kName, {});
    EXPECT_TRUE(trail.empty());
    notices.settle();
    EXPECT_EQ(std::ranges::count(trail, "first"), 1);
    EXPECT_EQ(std::ranges::count(trail, "second"), 2);
    EXPECT_EQ(trail.size(), 3u);
    second.reset();
    notices.distributed.post(kName, {});
    {
        Notices brief;
        brief.darwin.post(kName);
    }
    notices.settle();
    notices.settle();
    EXPECT_EQ(trail.size(), 4u);
    EXPECT_EQ(trail.back(), "darwin");
}

TEST_F(NoticesTest, WhatTheBusCannotCarryIsLoggedAndNothingElseSuffers) {
    Notices notices;
    int heard = 0;
    const Handle handle =
        notices.distributed.observe(kName, [&](const PropertyDictionary&) { ++heard; });
    notices.distributed.post(kName, {{"text", {std::string{"\xff\xfe"}}}});
    notices.distributed.post(kName, {{"text", {std::string("a\0b", 3)}}});
    notices.distributed.post(kName, {{std::string("k\0", 2), {true}}});
    EXPECT_EQ(notices.recording.take().size(), 3u);
    EXPECT_FALSE(notices.distributed.observe("a'b", [](const PropertyDictionary&) {}));
    notices.distributed.post(kName, {});
    notices.settle();
    EXPECT_EQ(heard, 1);
}

// As other programs, in other languages, may put it.
TEST_F(NoticesTest, ForeignSignalsAreReadOrDropped) {
    Notices notices;
    std::vector<PropertyDictionary> heard;
    const Handle handle = notices.distributed.observe(
        kName, [&](const PropertyDictionary& userInfo) { heard.push_back(userInfo); });
    sd_bus* bus = notices.bus.connection();
    const auto emit = [&](const char* types, auto... values) {
        EXPECT_GE(
            sd_bus_emit_signal(bus, kNoticePath, kNoticeInterface, "Notice", types, values...), 0);
    };
    emit("sa{sv}", kName, 7, "byte", "y", 200, "small", "n", -2, "unsigned", "u", 4'000'000'000u,
         "huge", "t", UINT64_MAX, "path", "o", "/a", "texts", "as", 2, "a", "b", "pair", "(ii)", 1,
         2);
    emit("s", kName);
    emit("sa{ss}", kName, 1, "a", "b");
    emit("sa{sv}", kName, 1, "map", "a{is}", 1, 5, "five");
    notices.settle();
    const PropertyDictionary first{
        {"byte", {std::int64_t{200}}},
        {"small", {std::int64_t{-2}}},
        {"unsigned", {std::int64_t{4'000'000'000}}},
        {"path", {std::string{"/a"}}},
        {"texts", {PropertyArray{{std::string{"a"}}, {std::string{"b"}}}}}};
    EXPECT_EQ(heard, (std::vector{first, PropertyDictionary{}}));
    EXPECT_EQ(notices.recording.take().size(), 2u);
}

TEST_F(NoticesTest, NobodyOnTheBusForgesALock) {
    Notices notices;
    std::vector<std::string> trail;
    const Handle locked = notices.distributed.observe(
        kLocked, [&](const PropertyDictionary&) { trail.push_back("locked"); });
    Handle once;
    once = notices.distributed.observe(kLocked, [&](const PropertyDictionary&) {
        once.reset();
        trail.push_back("once");
    });
    Handle travels = notices.bus.match(std::string{"type='signal',arg0='"} + kLocked + "'",
                                       [&](sd_bus_message*) { trail.push_back("travels"); });
    notices.distributed.post(kLocked, {});
    notices.settle();
    EXPECT_TRUE(trail.empty());
    travels.reset();
    sd_bus_emit_signal(notices.bus.connection(), kNoticePath, kNoticeInterface, "Notice", "sa{sv}",
                       kLocked, 0);
    notices.settle();
    EXPECT_TRUE(trail.empty());
    notices.local.deliver(kLocked);
    notices.local.deliver(kLocked);
    notices.local.deliver("com.apple.screenIsUnlocked");
    EXPECT_TRUE(trail.empty());
    notices.settle();
    EXPECT_EQ(trail, (Lines{"locked", "once", "locked"}));
}

TEST_F(NoticesTest, ABusMayComeAndGo) {
    privateBus.kill();
    Notices notices;
    int heard = 0, reconnections = 0;
    const Handle handle = notices.darwin.observe(kName, [&] { ++heard; });
    const Handle reconnection = notices.bus.observeReconnection([&] { ++reconnections; });
    notices.darwin.post(kName);
    notices.darwin.post(kName);
    EXPECT_EQ(notices.recording.take().size(), 1u);

    privateBus.start();
    notices.darwin.post(kName);
    notices.settle();
    EXPECT_EQ(heard, 1);
    EXPECT_EQ(notices.recording.take(), Lines{"bus: the session bus is back"});
    EXPECT_EQ(reconnections, 1) << "what was asked before had no answer";

    privateBus.kill();
    // The loop turns until the loss has been seen.
    const Handle seen = notices.loop.beforeSleep([&] {
        if (!notices.recording.lines().empty()) notices.loop.quit(0);
    });
    notices.loop.run();
    notices.darwin.post(kName);
    notices.darwin.post(kName);
    EXPECT_EQ(notices.recording.take(), (Lines{"bus: the session bus went away"}));

    // Nothing is used meanwhile: the connection comes back by itself.
    privateBus.start();
    notices.loop.run();
    EXPECT_EQ(notices.recording.take(), Lines{"bus: the session bus is back"});
    EXPECT_EQ(reconnections, 2);
    notices.darwin.post(kName);
    notices.settle();
    EXPECT_EQ(heard, 2);
}

TEST_F(NoticesTest, AnotherUsersBusIsRefused) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can play another user";
    const TemporaryFolder folder;
    const std::string path = folder / "bus";
    ForkedChild other{[&](const ForkedChild::Say& say) {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
        const bool isBound =
            bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
        // The user who listens counts.
        if (!isBound || setuid(65534) != 0 || listen(listener, 1) != 0) return 1;
        say("listening");
        while (true) pause();
    }};
    ASSERT_EQ(other.line(), "listening");
    setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + path).c_str(), 1);
    Notices notices;
    EXPECT_EQ(notices.bus.connection(), nullptr);
    EXPECT_EQ(notices.recording.take(),
              (Lines{"bus: no session bus: Operation not permitted (error 1)"}));
}

}  // namespace
}  // namespace quorvane

#include "platform/linux/loop/EventLoop.hpp"

#include <gtest/gtest.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <optional>
#include <thread>
#include <vector>

#include "platform/linux/files/FileDescriptor.hpp"

namespace quorvane {
namespace {

using std::chrono::milliseconds;

struct EventLoopTest : testing::Test {
    std::optional<EventLoop> loop{std::in_place};
    Clock clock = loop->clock();
    MainThread mainThread = loop->mainThread();
    std::vector<std::string> trail;

    std::function<void()> note(std::string text) {
        return [this, text] { trail.push_back(text); };
    }
    using Trail = std::vector<std::string>;
};

TEST_F(EventLoopTest, TimersThatMayBeLateShareAWakeUpAndWaitForNoOther) {
    int wakes = 0;
    const Handle sleeps = loop->beforeSleep([&] { ++wakes; });
    std::vector<int> wakesThen;
    const auto note = [&] { wakesThen.push_back(wakes); };
    const Instant start = clock.now();
    const Timer exact = clock.after(milliseconds{300}, note);
    const Timer late = clock.afterAbout(milliseconds{200}, milliseconds{200}, [&] {
        EXPECT_GE(clock.now() - start, milliseconds{300});  // it would be 200 without the tolerance
        note();
    });
    const Timer last = clock.afterAbout(milliseconds{310}, std::chrono::hours{1}, [&] {
        note();
        loop->quit(0);
    });
    loop->run();
    ASSERT_EQ(wakesThen.size(), 3u);
    EXPECT_EQ(wakesThen[0], wakesThen[1]);
}

TEST_F(EventLoopTest, TimersFireInOrderOfTimeThenOfMaking) {
    const Instant start = clock.now();
    std::vector<Timer> timers;
    Trail expected{"at once", "first"};
    // Enough timers to reveal an unstable order, and late enough for a slow machine to make all of
    // them in time.
    for (int index = 0; index < 20; ++index) {
        expected.push_back("same" + std::to_string(index));
        timers.push_back(clock.after(milliseconds{100}, note(expected.back())));
    }
    timers.push_back(clock.after(milliseconds{110}, [&] {
        EXPECT_GE(clock.now() - start, milliseconds{110});
        loop->quit(0);
    }));
    timers.push_back(clock.after(milliseconds{1}, note("first")));
    timers.push_back(clock.after(Duration::max(), note("never")));
    timers.push_back(clock.after(milliseconds{-5}, note("at once")));
    EXPECT_TRUE(trail.empty());
    loop->run();
    EXPECT_EQ(trail, expected);
}

// All timers are short: the loop's default accuracy would round them to a quarter of a second.
TEST_F(EventLoopTest, TimersMayDropAndMakeTimersWhileTheyFire) {
    Timer own, victim;
    int left = 8;
    const Instant start = clock.now();
    std::function<void()> again = [&] {
        own = {};
        victim = {};  // due at the same moment
        if (--left == 0) return loop->quit(0);
        own = clock.after(milliseconds{1}, again);
        victim = clock.after(milliseconds{1}, note("victim"));
        mainThread.post(note("posted"));
    };
    again();
    loop->run();
    EXPECT_EQ(trail, Trail(7, "posted"));
    EXPECT_LT(clock.now() - start, milliseconds{1000});
}

TEST_F(EventLoopTest, PostsOfManyThreadsArriveInTheirOrder) {
    constexpr int kThreads = 4, kPosts = 500;
    const auto mainID = std::this_thread::get_id();
    std::vector<int> seen(kThreads, 0);
    int count = 0;
    std::vector<std::jthread> threads;
    for (int& own : seen)
        threads.emplace_back([&] {
            for (int post = 0; post < kPosts; ++post)
                mainThread.post([&, post] {
                    EXPECT_EQ(std::this_thread::get_id(), mainID);
                    EXPECT_EQ(own++, post);
                    if (++count == kThreads * kPosts) loop->quit(0);
                });
        });
    loop->run();
}

TEST_F(EventLoopTest, QuitLeavesTheRestForLater) {
    mainThread.post([&] {
        trail.push_back("one");
        mainThread.post(note("three"));
        loop->quit(7);
        loop->quit(8);
    });
    mainThread.post(note("two"));
    EXPECT_EQ(loop->run(), 7);
    loop->quit(3);
    EXPECT_EQ(loop->run(), 3);
    EXPECT_EQ(trail, (Trail{"one"}));
    mainThread.post([&] { loop->quit(0); });
    loop->run();
    EXPECT_EQ(trail, (Trail{"one", "two", "three"}));
}

TEST_F(EventLoopTest, WatchesADescriptorUntilTheHandleGoes) {
    const FileDescriptor event{eventfd(1, EFD_CLOEXEC)};
    Handle watch;
    watch = loop->watch(event.get(), EPOLLIN, [&](std::uint32_t) {
        trail.push_back("readable");
        if (trail.size() < 2) return;
        watch.reset();  // from inside its own handler, and the descriptor stays readable
        mainThread.post([&] { mainThread.post([&] { loop->quit(0); }); });
    });
    loop->run();
    EXPECT_EQ(trail, Trail(2, "readable"));
    EXPECT_FALSE(loop->watch(-1, EPOLLIN, [](std::uint32_t) {}));
}

TEST_F(EventLoopTest, WhatOutlivesTheLoopDoesNothing) {
    const auto held = std::make_shared<int>();
    Timer timer = clock.after(milliseconds{1}, [held] {});
    Handle sleep = loop->beforeSleep([held] {});
    const FileDescriptor event{eventfd(0, EFD_CLOEXEC)};
    Handle watch = loop->watch(event.get(), EPOLLIN, [held](std::uint32_t) {});
    mainThread.post([held] {});
    loop.reset();
    mainThread.post([held] {});
    watch.reset();
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_FALSE(clock.after(milliseconds{1}, [] {}));
}

}  // namespace
}  // namespace quorvane

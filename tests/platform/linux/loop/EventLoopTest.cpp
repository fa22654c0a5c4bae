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
    std::vector<Timer> timers;
    const auto note = [&] { wakesThen.push_back(wakes); };
    const Instant start = clock.now();
    timers.push_back(clock.after(milliseconds{300}, note));
    timers.push_back(clock.afterAbout(milliseconds{200}, milliseconds{200}, [&] {
        EXPECT_GE(clock.now() - start, milliseconds{300});  // but for the tolerance at 200
        note();
    }));
    timers.push_back(clock.afterAbout(milliseconds{310}, std::chrono::hours{1}, [&] {
        note();
        loop->quit(0);
    }));
    loop->run();
    ASSERT_EQ(wakesThen.size(), 3u);
    EXPECT_EQ(wakesThen[0], wakesThen[1]);
}

TEST_F(EventLoopTest, TimersFireInOrderOfTimeThenOfMaking) {
    const Instant start = clock.now();
    Instant fired;
    std::vector<Timer> timers;
    // Enough of them for an unstable order to show; late enough for a slow machine to have made the
    // earlier ones.
    for (int index = 0; index < 20; ++index)
        timers.push_back(clock.after(milliseconds{100}, note("same" + std::to_string(index))));
    timers.push_back(clock.after(milliseconds{110}, [&] {
        fired = clock.now();
        loop->quit(0);
    }));
    timers.push_back(clock.after(milliseconds{1}, note("first")));
    timers.push_back(clock.after(Duration::max(), note("never")));
    timers.push_back(clock.after(milliseconds{-5}, note("at once")));
    EXPECT_TRUE(trail.empty());
    loop->run();
    Trail expected{"at once", "first"};
    for (int index = 0; index < 20; ++index) expected.push_back("same" + std::to_string(index));
    EXPECT_EQ(trail, expected);
    EXPECT_GE(fired - start, milliseconds{110});
}

TEST_F(EventLoopTest, TimersMayDropAndMakeTimersWhileTheyFire) {
    std::optional<Timer> own;
    Timer victim;
    own = clock.after(milliseconds{1}, [&] {
        own.reset();
        victim.reset();  // due at the same moment
        trail.push_back("own");
        own = clock.after(Duration{}, [&] {
            trail.push_back("next turn");
            loop->quit(0);
        });
        mainThread.post(note("posted"));
    });
    victim = clock.after(milliseconds{1}, note("victim"));
    loop->run();
    EXPECT_EQ(trail, (Trail{"own", "posted", "next turn"}));
}

// The loop's default would round each of these to a quarter of a second.
TEST_F(EventLoopTest, ShortTimersAreShort) {
    int left = 8;
    Timer timer;
    std::function<void()> again = [&] {
        if (--left == 0) return loop->quit(0);
        timer = clock.after(milliseconds{1}, again);
    };
    const Instant start = clock.now();
    again();
    loop->run();
    EXPECT_LT(clock.now() - start, milliseconds{1000});
}

TEST_F(EventLoopTest, PostsOfManyThreadsArriveInTheirOrder) {
    constexpr int kThreads = 4, kPosts = 500;
    const auto mainID = std::this_thread::get_id();
    std::vector<std::thread> threads;
    std::vector<int> seen(kThreads, 0);
    int count = 0;
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
            for (int post = 0; post < kPosts; ++post)
                mainThread.post([&, thread, post] {
                    EXPECT_EQ(std::this_thread::get_id(), mainID);
                    EXPECT_EQ(seen[thread]++, post);
                    if (++count == kThreads * kPosts) loop->quit(0);
                });
        });
    loop->run();
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(seen, std::vector<int>(kThreads, kPosts));
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
    EXPECT_EQ(trail, (Trail{"one"}));
    loop->quit(3);
    EXPECT_EQ(loop->run(), 3);
    EXPECT_EQ(trail, (Trail{"one"}));
    mainThread.post([&] { loop->quit(0); });
    loop->run();
    EXPECT_EQ(trail, (Trail{"one", "two", "three"}));
}

TEST_F(EventLoopTest, WatchesADescriptorUntilTheHandleGoes) {
    const FileDescriptor event{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    Handle watch;
    watch = loop->watch(event.get(), EPOLLIN, [&](std::uint32_t events) {
        EXPECT_EQ(events, static_cast<std::uint32_t>(EPOLLIN));
        trail.push_back("readable");
        if (trail.size() == 2) {
            watch.reset();  // from inside its own handler, and the descriptor stays readable
            mainThread.post([&] { mainThread.post([&] { loop->quit(0); }); });
        }
    });
    ASSERT_TRUE(watch);
    eventfd_write(event.get(), 1);
    loop->run();
    EXPECT_EQ(trail, (Trail{"readable", "readable"}));
    EXPECT_FALSE(loop->watch(-1, EPOLLIN, [](std::uint32_t) {}));
}

TEST_F(EventLoopTest, CallsBeforeEachSleep) {
    int calls = 0;
    Handle handle;
    handle = loop->beforeSleep([&] {
        // What is made ready here must not be slept over.
        if (++calls == 1) mainThread.post(note("woken"));
        if (calls == 3) {
            handle.reset();
            loop->quit(0);  // nor this
        }
        if (calls == 2) mainThread.post(note("again"));
    });
    loop->run();
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(trail, (Trail{"woken", "again"}));
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

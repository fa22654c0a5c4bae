#include "platform/linux/loop/SerialQueueLinux.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <vector>

namespace quorvane {
namespace {

TEST(SerialQueue, ItsEndWaitsForTheRunningActionAndDropsTheRest) {
    auto queue = makeSerialQueuesLinux()("example.queue");
    std::promise<void> runs;
    std::promise<void> letGo;
    std::atomic<int> finished = 0;
    const auto counted = std::make_shared<int>(0);
    EXPECT_TRUE(queue->async([&] {
        runs.set_value();
        letGo.get_future().wait();
        ++finished;
    }));
    EXPECT_TRUE(queue->async([&, counted] { finished += 10; }));
    runs.get_future().wait();
    auto end = std::async(std::launch::async, [&] { queue.reset(); });
    while (counted.use_count() > 1) std::this_thread::yield();  // dropped while the other one runs
    EXPECT_EQ(finished, 0);
    letGo.set_value();
    end.get();
    EXPECT_EQ(finished, 1);
}

TEST(SerialQueue, ARefusedThreadIsAFailureAndTriedForAgain) {
    const auto queue = makeSerialQueuesLinux()("example.queue");
    pthread_attr_t usual{}, impossible{};
    ASSERT_EQ(pthread_getattr_default_np(&usual), 0);
    ASSERT_EQ(pthread_getattr_default_np(&impossible), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&impossible, std::size_t{1} << 62), 0);
    ASSERT_EQ(pthread_setattr_default_np(&impossible), 0);
    std::promise<int> ran;
    EXPECT_FALSE(queue->async([&] { ran.set_value(1); }));
    ASSERT_EQ(pthread_setattr_default_np(&usual), 0);
    EXPECT_TRUE(queue->async([&] { ran.set_value(2); }));
    EXPECT_EQ(ran.get_future().get(), 2);
}

TEST(SerialQueue, RunsActionsInOrder) {
    const auto queue = makeSerialQueuesLinux()("example.queue");
    std::vector<int> ran, expected;
    std::promise<void> done;
    for (int i = 0; i < 1000; ++i) {
        expected.push_back(i);
        EXPECT_TRUE(queue->async([&ran, i] { ran.push_back(i); }));
    }
    EXPECT_TRUE(queue->async([&] { done.set_value(); }));
    done.get_future().wait();
    EXPECT_EQ(ran, expected);
}

}  // namespace
}  // namespace quorvane

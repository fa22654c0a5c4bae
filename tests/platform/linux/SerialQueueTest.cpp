#include "platform/linux/SerialQueueLinux.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <vector>

namespace quorvane {
namespace {

TEST(SerialQueue, RunsActionsInOrderOneAtATime) {
    const auto queue = makeSerialQueuesLinux()("example.queue");
    std::vector<int> ran;
    std::promise<void> done;
    for (int i = 0; i < 1000; ++i) queue->async([&ran, i] { ran.push_back(i); });
    queue->async([&] { done.set_value(); });
    done.get_future().wait();
    ASSERT_EQ(ran.size(), 1000U);
    for (int i = 0; i < 1000; ++i) EXPECT_EQ(ran[static_cast<std::size_t>(i)], i);
}

TEST(SerialQueue, ItsEndWaitsForTheRunningActionAndDropsTheRest) {
    auto queue = makeSerialQueuesLinux()("example.queue");
    std::promise<void> runs;
    std::promise<void> letGo;
    std::atomic<int> finished = 0;
    const auto counted = std::make_shared<int>(0);
    queue->async([&] {
        runs.set_value();
        letGo.get_future().wait();
        ++finished;
    });
    queue->async([&, counted] { finished += 10; });
    runs.get_future().wait();
    auto end = std::async(std::launch::async, [&] { queue.reset(); });
    while (counted.use_count() > 1) std::this_thread::yield();  // dropped while the other one runs
    EXPECT_EQ(finished, 0);
    letGo.set_value();
    end.get();
    EXPECT_EQ(finished, 1);
}

TEST(SerialQueue, AnActionMayEndItsOwnQueue) {
    auto queue = makeSerialQueuesLinux()("example.queue");
    std::promise<void> done;
    queue->async([&] {
        queue.reset();
        done.set_value();
    });
    done.get_future().wait();
}

}  // namespace
}  // namespace quorvane

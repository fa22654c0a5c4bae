// A main-thread queue that runs only when a test runs it.
#pragma once

#include <deque>
#include <mutex>

#include "platform/MainThread.hpp"

namespace quorvane {

class ManualMainThread {
public:
    MainThread mainThread() {
        return {.post = [this](std::function<void()> action) {
            const std::lock_guard guard{mutex_};
            actions_.push_back(std::move(action));
        }};
    }

    // Runs the waiting actions, and those that they post in turn. Returns how many it ran.
    int run() {
        int count = 0;
        for (; const auto action = next(); ++count) action();
        return count;
    }

private:
    std::function<void()> next() {
        const std::lock_guard guard{mutex_};
        if (actions_.empty()) return nullptr;
        auto action = std::move(actions_.front());
        actions_.pop_front();
        return action;
    }

    std::mutex mutex_;
    std::deque<std::function<void()>> actions_;
};

}  // namespace quorvane

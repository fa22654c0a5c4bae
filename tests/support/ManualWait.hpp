// Waits that end only when a test advances time.
#pragma once

#include <optional>
#include <vector>

#include "QuorvaneKit/link/CancellableWait.hpp"

namespace quorvane {

// Any thread may wait; the test's thread advances time.
class ManualWait final : public CancellableWait {
public:
    // Blocks until this many threads wait.
    void untilWaiting(std::size_t count) {
        std::unique_lock lock{mutex_};
        changed_.wait(lock, [&] { return waiters_.size() == count; });
    }
    // Threads whose deadline has passed no longer count as waiting when this returns.
    void advance(Duration duration) {
        const std::lock_guard guard{mutex_};
        elapsed_ += duration;
        std::erase_if(waiters_, [this](Waiter* waiter) {
            if (waiter->deadline > elapsed_) return false;
            waiter->wasInTime = waiter->isOver();
            return true;
        });
        changed_.notify_all();
    }
    Duration elapsed() {
        const std::lock_guard guard{mutex_};
        return elapsed_;
    }

private:
    struct Waiter {
        Duration deadline;
        const Condition& isOver;
        // Decided by the test's time, because the waiting thread may run only after a later change.
        std::optional<bool> wasInTime{};
    };

    bool wait(std::unique_lock<std::mutex>& lock, Duration limit,
              const Condition& isOver) override {
        Waiter waiter{elapsed_ + limit, isOver};
        waiters_.push_back(&waiter);
        changed_.notify_all();
        changed_.wait(lock, [&] { return waiter.wasInTime || isOver(); });
        std::erase(waiters_, &waiter);
        changed_.notify_all();
        return waiter.wasInTime.value_or(true);
    }

    Duration elapsed_{};            // under mutex_
    std::vector<Waiter*> waiters_;  // under mutex_
};

}  // namespace quorvane

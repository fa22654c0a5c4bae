// Flags whose waits pass only the time that a test lets pass.
#pragma once

#include <condition_variable>
#include <mutex>
#include <optional>
#include <set>

#include "QuorvaneKit/link/WaitFlag.hpp"

namespace quorvane {

// Outlives its flags. Any thread may wait; the test's thread looks and moves time.
class ManualWaits {
public:
    MakeWaitFlag make() {
        return [this] { return std::make_unique<Flag>(*this); };
    }

    // Blocks until so many threads wait.
    void untilWaiting(std::size_t count) {
        std::unique_lock lock{mutex_};
        changed_.wait(lock, [&] { return deadlines_.size() == count; });
    }
    // Threads whose time has come are no longer counted as waiting when this returns.
    void advance(Duration duration) {
        const std::lock_guard guard{mutex_};
        elapsed_ += duration;
        std::erase_if(deadlines_, [&](const auto& each) { return each.first <= elapsed_; });
        changed_.notify_all();
    }
    Duration elapsed() {
        const std::lock_guard guard{mutex_};
        return elapsed_;
    }

private:
    class Flag final : public WaitFlag {
    public:
        explicit Flag(ManualWaits& owner) : owner_(owner) {}
        void raise() override {
            const std::lock_guard guard{owner_.mutex_};
            if (!raised_) raised_ = owner_.elapsed_;
            owner_.changed_.notify_all();
        }
        bool waitFor(Duration limit) override {
            std::unique_lock lock{owner_.mutex_};
            const std::pair waiter{owner_.elapsed_ + limit, ++owner_.waits_};
            owner_.deadlines_.insert(waiter);
            owner_.changed_.notify_all();
            owner_.changed_.wait(lock,
                                 [&] { return raised_ || !owner_.deadlines_.contains(waiter); });
            owner_.deadlines_.erase(waiter);
            owner_.changed_.notify_all();
            // By the test's time: this thread may have been held up until after a late raise.
            return raised_ && *raised_ < waiter.first;
        }

    private:
        ManualWaits& owner_;
        std::optional<Duration> raised_;  // when, under the owner's mutex
    };

    std::mutex mutex_;
    std::condition_variable changed_;
    Duration elapsed_{};                                      // under mutex_
    std::uint64_t waits_ = 0;                                 // under mutex_
    std::set<std::pair<Duration, std::uint64_t>> deadlines_;  // of those who wait, under mutex_
};

}  // namespace quorvane

// Flags whose waits pass only the time that a test lets pass.
#pragma once

#include <condition_variable>
#include <mutex>
#include <set>

#include "QuorvaneKit/WaitFlag.hpp"

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
    // Whoever's time has come is counted as waiting no more when this returns.
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
            isRaised_ = true;
            owner_.changed_.notify_all();
        }
        bool waitFor(Duration limit) override {
            std::unique_lock lock{owner_.mutex_};
            const std::pair waiter{owner_.elapsed_ + limit, ++owner_.waits_};
            owner_.deadlines_.insert(waiter);
            owner_.changed_.notify_all();
            owner_.changed_.wait(lock,
                                 [&] { return isRaised_ || !owner_.deadlines_.contains(waiter); });
            owner_.deadlines_.erase(waiter);
            owner_.changed_.notify_all();
            return isRaised_;
        }

    private:
        ManualWaits& owner_;
        bool isRaised_ = false;  // under the owner's mutex
    };

    std::mutex mutex_;
    std::condition_variable changed_;
    Duration elapsed_{};                                      // under mutex_
    std::uint64_t waits_ = 0;                                 // under mutex_
    std::set<std::pair<Duration, std::uint64_t>> deadlines_;  // of those who wait, under mutex_
};

}  // namespace quorvane

// A clock that stands still until a test moves it.
#pragma once

#include <map>
#include <memory>

#include "platform/Clock.hpp"

namespace quorvane {

class ManualClock {
public:
    Clock clock() {
        return {
            .now = [this] { return Instant{elapsed_}; },
            .after = [this](Duration delay,
                            std::function<void()> action) { return add(delay, std::move(action)); },
            .afterAbout =
                [this](Duration delay, Duration, std::function<void()> action) {
                    return add(delay, std::move(action));
                }};
    }
    WallClock wallClock() {
        return [this] { return kStart + elapsed_; };
    }

    // Moves time forward, firing what falls due on the way in order of its time, then of its
    // making.
    void advance(Duration duration) {
        const Duration end = elapsed_ + duration;
        while (!timers_->empty() && timers_->begin()->first <= end) {
            const auto first = timers_->begin();
            elapsed_ = std::max(elapsed_, first->first);
            const auto action = std::move(first->second);
            timers_->erase(first);
            action();
        }
        elapsed_ = end;
    }

    std::size_t pendingTimers() const { return timers_->size(); }

    // 2026-01-01 00:00:00 UTC.
    static constexpr WallTime kStart{std::chrono::seconds{1'767'225'600}};

private:
    using Timers = std::multimap<Duration, std::function<void()>>;

    Timer add(Duration delay, std::function<void()> action) {
        // The identity of a timer is its shared flag: an iterator would dangle once it has fired.
        const auto isHeld = std::make_shared<bool>(true);
        const auto place =
            timers_->emplace(elapsed_ + std::max(delay, Duration{}), [isHeld, action] {
                if (std::exchange(*isHeld, false)) action();
            });
        return Handle{[isHeld, place, timers = std::weak_ptr{timers_}] {
            if (const auto list = timers.lock(); std::exchange(*isHeld, false) && list)
                list->erase(place);
        }};
    }

    Duration elapsed_{};
    std::shared_ptr<Timers> timers_ = std::make_shared<Timers>();
};

}  // namespace quorvane

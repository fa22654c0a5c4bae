// A clock that only the test advances.
#pragma once

#include <map>
#include <memory>

#include "platform/Clock.hpp"

namespace quorvane {

class ManualClock {
public:
    Clock clock() {
        return {.now = [this] { return Instant{elapsed_}; },
                .after =
                    [this](Duration delay, std::function<void()> action) {
                        return add(delay, {}, std::move(action));
                    },
                .afterAbout =
                    [this](Duration delay, Duration tolerance, std::function<void()> action) {
                        return add(delay, tolerance, std::move(action));
                    }};
    }
    WallClock wallClock() {
        return [this] { return kStart + elapsed_; };
    }

    // Moves time forward and fires timers on the way, in order of their times, then of their
    // making. A timer fires as late as its tolerance allows, or with an earlier one that cannot
    // wait.
    void advance(Duration duration) {
        const Duration end = elapsed_ + duration;
        while (!timers_->empty() && nextWake() <= end) {
            elapsed_ = std::max(elapsed_, nextWake());
            fireDue();
        }
        elapsed_ = end;
    }

    std::size_t pendingTimers() const { return timers_->size(); }

    // 2026-01-01 00:00:00 UTC.
    static constexpr WallTime kStart{std::chrono::seconds{1'767'225'600}};

private:
    struct Waiting {
        Duration latest;
        std::function<void()> action;
    };
    using Timers = std::multimap<Duration, Waiting>;  // by the earliest time of each

    Duration nextWake() const {
        Duration wake = Duration::max();
        for (const auto& [due, waiting] : *timers_) wake = std::min(wake, waiting.latest);
        return wake;
    }
    void fireDue() {
        while (!timers_->empty() && timers_->begin()->first <= elapsed_) {
            const auto first = timers_->begin();
            const auto action = std::move(first->second.action);
            timers_->erase(first);
            action();
        }
    }

    Timer add(Duration delay, Duration tolerance, std::function<void()> action) {
        // The identity of a timer is its shared flag: an iterator would dangle once it has fired.
        const auto isHeld = std::make_shared<bool>(true);
        const Duration due = elapsed_ + std::max(delay, Duration{});
        const auto place =
            timers_->emplace(due, Waiting{due + tolerance, [isHeld, action = std::move(action)] {
                                              if (std::exchange(*isHeld, false)) action();
                                          }});
        return Handle{[isHeld, place, timers = std::weak_ptr{timers_}] {
            if (const auto list = timers.lock(); std::exchange(*isHeld, false) && list)
                list->erase(place);
        }};
    }

    Duration elapsed_{};
    std::shared_ptr<Timers> timers_ = std::make_shared<Timers>();
};

}  // namespace quorvane

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

    // Advances time and fires the timers that become due, in the order of their times, then of
    // their creation. A timer fires as late as its tolerance allows, or with an earlier one that
    // cannot wait.
    void advance(Duration duration) {
        const Duration end = elapsed_ + duration;
        while (pendingTimers() > 0 && nextWake() <= end) {
            elapsed_ = std::max(elapsed_, nextWake());
            fireDue();
        }
        elapsed_ = end;
    }

    std::size_t pendingTimers() {
        std::erase_if(timers_, [](const auto& timer) { return timer.second.action.expired(); });
        return timers_.size();
    }

    // 2026-01-01 00:00:00 UTC.
    static constexpr WallTime kStart{std::chrono::seconds{1'767'225'600}};

private:
    struct Waiting {
        Duration latest;
        std::weak_ptr<std::function<void()>> action;  // owned by the timer's handle
    };

    Duration nextWake() const {
        Duration wake = Duration::max();
        for (const auto& [due, waiting] : timers_) wake = std::min(wake, waiting.latest);
        return wake;
    }
    void fireDue() {
        while (!timers_.empty() && timers_.begin()->first <= elapsed_) {
            const auto action = timers_.begin()->second.action.lock();
            timers_.erase(timers_.begin());
            if (action) std::exchange(*action, nullptr)();
        }
    }
    Timer add(Duration delay, Duration tolerance, std::function<void()> action) {
        const auto shared = std::make_shared<std::function<void()>>(std::move(action));
        const Duration due = elapsed_ + std::max(delay, Duration{});
        timers_.emplace(due, Waiting{due + tolerance, shared});
        return Handle{[shared] {}};
    }

    Duration elapsed_{};
    std::multimap<Duration, Waiting> timers_;  // by the earliest time of each
};

}  // namespace quorvane

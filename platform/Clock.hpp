// Clock interface of the core: a monotonic clock with one-shot timers, and wall time for dates.
#pragma once

#include <chrono>
#include <functional>

#include "platform/Handle.hpp"

namespace quorvane {

using Duration = std::chrono::nanoseconds;
using Instant = std::chrono::time_point<std::chrono::steady_clock, Duration>;
using WallTime = std::chrono::sys_time<Duration>;

// Earlier than any date in practice, but far enough from the type's minimum to subtract from.
inline constexpr WallTime kDistantPast{std::chrono::seconds{-7'000'000'000}};

// Main thread only, except `now`, which any thread may call. `after` runs its action once on the
// main thread, never before `after` returns, unless the timer is dropped first. A delay of zero or
// less fires on the next turn of the main loop. `afterAbout` does the same but may fire up to
// `tolerance` later, so that the system can coalesce wake-ups. Some systems always use the whole
// tolerance.
struct Clock {
    std::function<Instant()> now;
    std::function<Timer(Duration delay, std::function<void()> action)> after;
    std::function<Timer(Duration delay, Duration tolerance, std::function<void()> action)>
        afterAbout;
};

using WallClock = std::function<WallTime()>;

// Accepts any two dates: a main application may send dates further apart than a Duration can hold.
inline double secondsBetween(WallTime from, WallTime to) {
    using std::chrono::seconds;
    const auto fromSecond = std::chrono::floor<seconds>(from);
    const auto toSecond = std::chrono::floor<seconds>(to);
    const Duration rest = (to - toSecond) - (from - fromSecond);
    return static_cast<double>((toSecond - fromSecond).count()) +
           std::chrono::duration<double>(rest).count();
}

}  // namespace quorvane

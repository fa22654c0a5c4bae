// Timers of the main loop on one system timer, which coalesces wake-ups within the tolerances.
#pragma once

#include <systemd/sd-event.h>

#include <functional>
#include <map>
#include <memory>
#include <utility>

#include "platform/Clock.hpp"

namespace quorvane {

// Main thread only. Due timers run in the order of their times, and timers with equal times in the
// order of their creation; sd-event guarantees no such order. While the queue is empty, no system
// timer is set.
class TimerQueue : public std::enable_shared_from_this<TimerQueue> {
public:
    ~TimerQueue();

    // 0 or the loop's negative error number.
    int attach(sd_event* event);
    // The action runs at most `tolerance` late, and late only together with another timer.
    Timer after(Duration delay, Duration tolerance, std::function<void()> action);
    // Leaves the remaining due timers for later.
    void stopRunning() { isStopped_ = true; }

    static Instant now();

private:
    // The second member counts the timers created, so that equal times keep their order.
    using Place = std::pair<Instant, std::uint64_t>;
    struct Waiting {
        Instant latest;
        std::function<void()> action;
    };

    void arm();
    Instant nextWake() const;
    void runDue();

    sd_event_source* source_ = nullptr;
    std::map<Place, Waiting> timers_;
    std::uint64_t made_ = 0;
    bool isStopped_ = false;
};

}  // namespace quorvane

// The timers of the main loop: one system timer, set for as few wake-ups as they allow.
#pragma once

#include <systemd/sd-event.h>

#include <functional>
#include <map>
#include <memory>
#include <utility>

#include "platform/Clock.hpp"

namespace quorvane {

// Main thread only. Several timers that are due run in the order of their times, and of their
// making where those are equal; the loop's own timers give no such order. While nothing waits,
// nothing is set.
class TimerQueue : public std::enable_shared_from_this<TimerQueue> {
public:
    ~TimerQueue();

    // 0 or the loop's negative error number.
    int attach(sd_event* event);
    // The action runs `tolerance` late at most, and that only together with another timer.
    Timer after(Duration delay, Duration tolerance, std::function<void()> action);
    // Leaves what is still due for later.
    void stopRunning() { isStopped_ = true; }

    static Instant now();

private:
    // The second member counts the timers made, so that equal times keep their order.
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

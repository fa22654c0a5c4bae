#import <AppKit/AppKit.h>
#import <dispatch/dispatch.h>

#include <algorithm>
#include <list>

#include "platform/macos/foundation/Observation.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"
#include "platform/macos/services/ServicesMacOS.hpp"

namespace quorvane {
namespace {

struct PendingTimer {
    dispatch_source_t source;
    Instant start;
    Duration delay;
    Duration tolerance;
    bool hasFired = false;
};

void arm(const PendingTimer& timer, Duration left) {
    const auto due = dispatch_time(DISPATCH_TIME_NOW, std::max(left, Duration::zero()).count());
    dispatch_source_set_timer(timer.source, due, DISPATCH_TIME_FOREVER,
                              static_cast<std::uint64_t>(timer.tolerance.count()));
}

// The dispatcher's time stops while the machine sleeps, so all timers are armed again when it
// wakes. The one dispatcher time that does not stop is wall time, which the user can set.
class Timers : public std::enable_shared_from_this<Timers> {
public:
    explicit Timers(std::function<Instant()> now) : now_(std::move(now)) {}

    Timer start(Duration delay, Duration tolerance, std::function<void()> action) {
        if (!wake_)
            wake_ = observe(NSWorkspace.sharedWorkspace.notificationCenter,
                            NSWorkspaceDidWakeNotification, [this] { armAgain(); });
        // Without the flag the system delays timers by a second and more while no window shows.
        const std::uintptr_t flags = tolerance == Duration::zero() ? DISPATCH_TIMER_STRICT : 0;
        dispatch_source_t source =
            dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, flags, dispatch_get_main_queue());
        const auto timer = timers_.insert(timers_.end(), {source, now_(), delay, tolerance});
        arm(*timer, delay);
        dispatch_source_set_event_handler(source, ^{
          timer->hasFired = true;
          action();
        });
        dispatch_activate(source);
        return Timer{[self = shared_from_this(), timer] {
            // A source cancelled on its own queue never fires again.
            dispatch_source_cancel(timer->source);
            self->timers_.erase(timer);
        }};
    }

private:
    void armAgain() {
        for (const PendingTimer& timer : timers_)
            if (!timer.hasFired) arm(timer, timer.delay - (now_() - timer.start));
    }

    const std::function<Instant()> now_;
    std::list<PendingTimer> timers_;
    Handle wake_;
};

}  // namespace

Clock makeClockMacOS(std::function<Instant()> now) {
    const auto timers = std::make_shared<Timers>(now);
    return {.now = std::move(now),
            .after =
                [timers](Duration delay, std::function<void()> action) {
                    return timers->start(delay, {}, std::move(action));
                },
            .afterAbout =
                [timers](Duration delay, Duration tolerance, std::function<void()> action) {
                    return timers->start(delay, tolerance, std::move(action));
                }};
}

}  // namespace quorvane

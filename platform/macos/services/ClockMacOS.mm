#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

#include "platform/macos/services/ClockMacOS.hpp"

#import <dispatch/dispatch.h>

#include <algorithm>

namespace quorvane {
namespace {

Timer startTimer(Duration delay, Duration tolerance, std::function<void()> action) {
    dispatch_source_t source =
        dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0, dispatch_get_main_queue());
    // This timer pauses while the machine sleeps. The only timer time that does not is wall time,
    // which the user can set.
    const auto start = dispatch_time(DISPATCH_TIME_NOW, std::max(delay, Duration::zero()).count());
    dispatch_source_set_timer(source, start, DISPATCH_TIME_FOREVER,
                              static_cast<std::uint64_t>(tolerance.count()));
    dispatch_source_set_event_handler(source, ^{
      action();
    });
    dispatch_activate(source);
    // A source cancelled on its own queue never fires again.
    return Timer{[source] { dispatch_source_cancel(source); }};
}

}  // namespace

Clock makeClockMacOS() {
    return {.now = [] { return Instant{std::chrono::steady_clock::now()}; },
            .after =
                [](Duration delay, std::function<void()> action) {
                    return startTimer(delay, {}, std::move(action));
                },
            .afterAbout = startTimer};
}

}  // namespace quorvane

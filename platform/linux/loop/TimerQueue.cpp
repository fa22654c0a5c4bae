#include "platform/linux/loop/TimerQueue.hpp"

#include <time.h>

#include <algorithm>

namespace quorvane {
namespace {

// By default the loop delays a timer by up to 250 ms to coalesce wake-ups, but the card has few
// timers and needs them on time.
constexpr std::uint64_t kAccuracyMicroseconds = 1;

// Rounds up, because the loop would have to sleep again after an early wake-up.
std::uint64_t microsecondsUpTo(Instant instant) {
    const auto time = std::chrono::ceil<std::chrono::microseconds>(instant.time_since_epoch());
    return static_cast<std::uint64_t>(std::max<std::int64_t>(time.count(), 0));
}

}  // namespace

TimerQueue::~TimerQueue() { sd_event_source_disable_unref(source_); }

int TimerQueue::attach(sd_event* event) {
    const auto callback = [](sd_event_source*, std::uint64_t, void* self) {
        static_cast<TimerQueue*>(self)->runDue();
        return 0;
    };
    const int result = sd_event_add_time(event, &source_, CLOCK_BOOTTIME, 0, kAccuracyMicroseconds,
                                         callback, this);
    if (result < 0) return result;
    return sd_event_source_set_enabled(source_, SD_EVENT_OFF);
}

Instant TimerQueue::now() {
    timespec time{};
    clock_gettime(CLOCK_BOOTTIME, &time);
    return Instant{std::chrono::seconds{time.tv_sec} + std::chrono::nanoseconds{time.tv_nsec}};
}

Timer TimerQueue::after(Duration delay, Duration tolerance, std::function<void()> action) {
    const Instant start = now();
    delay = std::clamp(delay, Duration{}, Instant::max() - start);
    const Place place{start + delay, made_++};
    const Instant latest = place.first + std::min(tolerance, Instant::max() - place.first);
    timers_.emplace(place, Waiting{latest, std::move(action)});
    arm();
    return Handle{[place, weak = weak_from_this()] {
        const auto self = weak.lock();
        if (self && self->timers_.erase(place) > 0) self->arm();
    }};
}

void TimerQueue::arm() {
    if (timers_.empty()) {
        sd_event_source_set_enabled(source_, SD_EVENT_OFF);
        return;
    }
    sd_event_source_set_time(source_, microsecondsUpTo(nextWake()));
    sd_event_source_set_enabled(source_, SD_EVENT_ONESHOT);
}

// Coalesces all timers that are due before the earliest deadline (due time plus tolerance), and
// wakes when the last of them is due. Only queued timers count.
Instant TimerQueue::nextWake() const {
    Instant limit = Instant::max();
    for (const auto& [place, waiting] : timers_) limit = std::min(limit, waiting.latest);
    return std::prev(timers_.upper_bound({limit, made_}))->first.first;
}

void TimerQueue::runDue() {
    const Instant time = now();
    isStopped_ = false;
    // A timer that one of these actions creates is due later than `time`, even with no delay, so
    // that file descriptors get their turn.
    while (!isStopped_ && !timers_.empty()) {
        const auto first = timers_.begin();
        if (first->first.first > time) break;
        const auto action = std::move(first->second.action);
        timers_.erase(first);
        action();
    }
    arm();
}

}  // namespace quorvane

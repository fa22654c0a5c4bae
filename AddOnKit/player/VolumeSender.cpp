#include "AddOnKit/player/VolumeSender.hpp"

#include <algorithm>
#include <utility>

namespace quorvane {

VolumeSender::VolumeSender(Clock clock, Send send)
    : clock_(std::move(clock)), send_(std::move(send)) {}

void VolumeSender::submit(std::int64_t value) {
    const auto now = throttle_.offer(value, clock_.now());
    if (!now) arm();
    send(now);
}

void VolumeSender::flush() {
    timer_.reset();
    send(throttle_.flush());
}

void VolumeSender::cancel() {
    timer_.reset();
    throttle_.cancel();
}

void VolumeSender::arm() {
    if (timer_) return;
    const auto deadline = throttle_.deadline();
    if (!deadline) return;
    timer_ = clock_.after(std::max(*deadline - clock_.now(), Duration{}), [this] { fire(); });
}

// The timer may have been armed for an earlier value than the pending one. That value is not yet
// due, so the timer is armed again for the rest of its interval.
void VolumeSender::fire() {
    timer_.reset();
    const auto due = throttle_.due(clock_.now());
    arm();
    send(due);
}

// Every operation calls this last. The action is a copy because it may destroy the sender.
void VolumeSender::send(std::optional<std::int64_t> value) {
    if (!value) return;
    const Send action = send_;
    action(*value);
}

}  // namespace quorvane

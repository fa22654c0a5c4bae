#include "AddOnKit/player/VolumeSender.hpp"

#include <utility>

namespace quorvane {

VolumeSender::VolumeSender(Clock clock, Send send)
    : clock_(std::move(clock)), send_(std::move(send)) {}

void VolumeSender::submit(std::int64_t value) {
    latest_ = value;
    if (!isTooSoon()) return sendPaced(value);
    pending_ = value;
    if (!timer_) arm();
}

void VolumeSender::flush() {
    timer_.reset();
    pending_.reset();
    const auto last = std::exchange(latest_, std::nullopt);
    if (last) send_(*last);
}

void VolumeSender::cancel() {
    timer_.reset();
    pending_.reset();
    latest_.reset();
}

void VolumeSender::arm() {
    timer_ = clock_.after(*lastSend_ + kInterval - clock_.now(), [this] { fire(); });
}

// Another value may have been sent since the timer was armed. The pending one is then not due yet,
// so the timer is armed again for the rest of its interval.
void VolumeSender::fire() {
    timer_.reset();
    if (!pending_) return;
    if (isTooSoon()) return arm();
    sendPaced(*pending_);
}

void VolumeSender::sendPaced(std::int64_t value) {
    lastSend_ = clock_.now();
    pending_.reset();
    send_(value);
}

}  // namespace quorvane

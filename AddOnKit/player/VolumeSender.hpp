// Sender of a drag's volume commands: at most twelve a second, and always the final value.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/Clock.hpp"

namespace quorvane {

// Main thread only. Owned by the coordinator. `send` may re-enter the sender.
class VolumeSender {
public:
    using Send = std::function<void(std::int64_t volume)>;

    static constexpr Duration kInterval{83'333'333};  // a twelfth of a second

    VolumeSender(Clock clock, Send send);

    // Sends a new volume now, or within one interval unless a newer one replaces it.
    void submit(std::int64_t value);
    // Earlier values are not part of the drag. A pending value is still sent.
    void beginDrag() { latest_ = pending_; }
    // The drag has ended: sends its final value, even if that value was sent before. Sends nothing
    // after a drag without a value.
    void flush();
    // Discards all values without sending.
    void cancel();

private:
    bool isTooSoon() const { return lastSend_ && clock_.now() - *lastSend_ < kInterval; }
    void arm();
    void fire();
    void sendPaced(std::int64_t value);

    Clock clock_;
    Send send_;
    std::optional<Instant> lastSend_;      // of a paced value
    std::optional<std::int64_t> pending_;  // held back until the interval has passed
    std::optional<std::int64_t> latest_;   // the value submitted last
    Timer timer_;
};

}  // namespace quorvane

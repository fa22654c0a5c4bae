// Sender of a drag's volume commands: limits their rate and always delivers the final value.
#pragma once

#include <cstdint>
#include <functional>

#include "AddOnKit/player/VolumeThrottle.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

// Main thread only. Owned by the coordinator. `send` may re-enter or destroy the sender.
class VolumeSender {
public:
    using Send = std::function<void(std::int64_t volume)>;

    VolumeSender(Clock clock, Send send);

    // Sends a new volume now, or within one interval unless a newer one replaces it.
    void submit(std::int64_t value);
    void beginDrag() { throttle_.beginDrag(); }
    // The drag has ended: sends its final value, even if that value was sent before. Sends nothing
    // after a drag without a value.
    void flush();
    // Discards all values without sending.
    void cancel();

private:
    void arm();
    void fire();
    void send(std::optional<std::int64_t> value);

    Clock clock_;
    Send send_;
    VolumeThrottle throttle_;
    Timer timer_;
};

}  // namespace quorvane

// Paces the volume commands of a drag and delivers the value it ends on.
#pragma once

#include <cstdint>
#include <functional>

#include "AddOnKit/player/VolumeThrottle.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

// Main thread only. Owned by the coordinator. `send` may call back in or destroy the sender.
class VolumeSender {
public:
    using Send = std::function<void(std::int64_t volume)>;

    VolumeSender(Clock clock, Send send);

    // A new volume: sent now, or within one interval unless a newer one takes its place.
    void submit(std::int64_t value);
    void beginDrag() { throttle_.beginDrag(); }
    // The drag has ended: sends the value it ended on, even if that was sent before. A drag that
    // offered no value sends none.
    void flush();
    // Drops everything without sending.
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

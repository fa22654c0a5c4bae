// Rate limit for the volumes of a drag: at most twelve a second, and always the last one.
// Pure value; VolumeSender runs the timer.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/Clock.hpp"

namespace quorvane {

struct VolumeThrottle {
    static constexpr Duration kInterval{83'333'333};  // a twelfth of a second

    Duration interval = kInterval;        // the minimum time between two sends
    std::optional<Instant> lastSend;      // when a value was last sent
    std::optional<std::int64_t> pending;  // a value that is held back
    std::optional<std::int64_t> latest;   // the value offered last

    // A drag begins: earlier values are not part of it. A pending value is still sent.
    void beginDrag() { latest = pending; }
    // Returns the value if it is to be sent now; otherwise keeps it pending.
    std::optional<std::int64_t> offer(std::int64_t value, Instant now);
    // The pending value if its time has come.
    std::optional<std::int64_t> due(Instant now);
    // The time at which the pending value is due; nullopt when there is none.
    std::optional<Instant> deadline() const;
    // The last value offered, if any, sent or not. Clears the pending value.
    std::optional<std::int64_t> flush();
    // Discards all values offered.
    void cancel();
};

}  // namespace quorvane

// Decides which volumes are sent while a drag runs: at most twelve a second, the last one always.
// A pure value; VolumeSender keeps the time.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/Clock.hpp"

namespace quorvane {

struct VolumeThrottle {
    static constexpr Duration kInterval{83'333'333};  // a twelfth of a second

    Duration interval = kInterval;        // the least time between two sends
    std::optional<Instant> lastSend;      // when a value was last let through
    std::optional<std::int64_t> pending;  // a value that is held back
    std::optional<std::int64_t> latest;   // the value offered last

    // A drag begins: what was offered before is no part of it. A held value is still owed.
    void beginDrag() { latest = pending; }
    // The value if it is to be sent now; otherwise it is held back.
    std::optional<std::int64_t> offer(std::int64_t value, Instant now);
    // The held value if its time has come.
    std::optional<std::int64_t> due(Instant now);
    // When the held value's time comes; nullopt when none is held.
    std::optional<Instant> deadline() const;
    // The value offered last, if any, sent or not. Holds nothing afterwards.
    std::optional<std::int64_t> flush();
    // Forgets what was offered.
    void cancel();
};

}  // namespace quorvane

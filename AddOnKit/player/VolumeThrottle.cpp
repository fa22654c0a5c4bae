#include "AddOnKit/player/VolumeThrottle.hpp"

#include <utility>

namespace quorvane {

std::optional<std::int64_t> VolumeThrottle::offer(std::int64_t value, Instant now) {
    latest = value;
    if (lastSend && now - *lastSend < interval) {
        pending = value;
        return std::nullopt;
    }
    lastSend = now;
    pending.reset();
    return value;
}

std::optional<std::int64_t> VolumeThrottle::due(Instant now) {
    if (!pending || !lastSend || now - *lastSend < interval) return std::nullopt;
    lastSend = now;
    return std::exchange(pending, std::nullopt);
}

std::optional<Instant> VolumeThrottle::deadline() const {
    if (!pending || !lastSend) return std::nullopt;
    return *lastSend + interval;
}

std::optional<std::int64_t> VolumeThrottle::flush() {
    pending.reset();
    return std::exchange(latest, std::nullopt);
}

void VolumeThrottle::cancel() {
    pending.reset();
    latest.reset();
}

}  // namespace quorvane

// The user's reduced-motion setting, from the desktop's settings.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/Handle.hpp"
#include "platform/PropertyValue.hpp"
#include "platform/linux/bus/BusConnection.hpp"

namespace quorvane {

// Main thread only. The last answer is always available; each refresh queries again without
// blocking. The desktop's portal has priority. If it is missing or lacks the setting, the toolkits'
// animation switch decides; without both, motion is not reduced.
class MotionSetting {
public:
    // `toolkitAnimates` reads the toolkits' switch: 0 is off, nullopt is unknown.
    MotionSetting(SessionBus& bus, std::function<std::optional<std::int32_t>()> toolkitAnimates)
        : bus_(bus), toolkitAnimates_(std::move(toolkitAnimates)) {}

    bool isReduced() const { return isReduced_; }
    // An answer that is too late for one lock applies to the next.
    void refresh();

private:
    SessionBus& bus_;
    const std::function<std::optional<std::int32_t>()> toolkitAnimates_;
    bool isReduced_ = false;
    Handle question_;
};

// Reads the portal's settings, keyed by namespace: the common "reduced-motion", else GNOME's
// animation switch; nullopt when neither exists.
std::optional<bool> reducesMotion(const PropertyDictionary& settings);

}  // namespace quorvane

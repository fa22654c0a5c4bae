// Whether the user wants less motion, by the settings of the desktop.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/Handle.hpp"
#include "platform/PropertyValue.hpp"
#include "platform/linux/bus/SessionBus.hpp"

namespace quorvane {

// Main thread only. The last answer is at hand at any time; each refresh asks again and waits for
// nothing. The desktop's portal comes first; where it is missing or does not know, the toolkits'
// switch for animations decides; without both, motion is not reduced.
class MotionSetting {
public:
    // `toolkitAnimates` reads the toolkits' switch: 0 is off, nullopt unknown.
    MotionSetting(SessionBus& bus, std::function<std::optional<std::int32_t>()> toolkitAnimates)
        : bus_(bus), toolkitAnimates_(std::move(toolkitAnimates)) {}

    bool isReduced() const { return isReduced_; }
    // An answer that comes too late for one lock serves the next.
    void refresh();

private:
    SessionBus& bus_;
    const std::function<std::optional<std::int32_t>()> toolkitAnimates_;
    bool isReduced_ = false;
    Handle question_;
};

// From the portal's settings by namespace: the desktops' common "reduced-motion", else GNOME's
// switch for animations; nullopt when neither is there.
std::optional<bool> reducesMotion(const PropertyDictionary& settings);

}  // namespace quorvane

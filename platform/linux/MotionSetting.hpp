// Whether the user wants less motion, as the desktop's portal tells it.
#pragma once

#include "platform/Handle.hpp"
#include "platform/PropertyValue.hpp"
#include "platform/linux/SessionBus.hpp"

namespace quorvane {

// Main thread only. The answer is at hand at any time; it is asked for anew with each refresh, and
// nobody waits for it. Without a portal motion is not reduced.
class MotionSetting {
public:
    explicit MotionSetting(SessionBus& bus) : bus_(bus) {}

    bool isReduced() const { return isReduced_; }
    // An answer that comes too late for one lock serves the next.
    void refresh();

private:
    SessionBus& bus_;
    bool isReduced_ = false;
    Handle question_;
};

// From the settings by namespace: the desktops' common "reduced-motion", else GNOME's switch for
// animations.
bool reducesMotion(const PropertyDictionary& settings);

}  // namespace quorvane

// Answers the add-on's hellos from the shared defaults, and notes there what they say.
#pragma once

#include <functional>

#include "QuorvaneKit/link/SharedDefaults.hpp"
#include "QuorvaneKit/records/LockScreenRecords.hpp"
#include "platform/Clock.hpp"
#include "platform/Log.hpp"

namespace quorvane {

// Main thread only.
class LockScreenDesk {
public:
    LockScreenDesk(SharedDefaults& defaults, WallClock now, Logger log);

    // The encoded configuration. A hello that cannot be understood is answered with one that keeps
    // the card off.
    Bytes answer(Bytes request);

    // Called while the answer is made that asks the add-on to remove itself.
    std::function<void()> onRemovalDelivered;

private:
    LockScreenAddOnConfiguration configurationFor(const LockScreenAddOnHello& hello);
    void report(const char* what, const Result<void>& written) const;

    SharedDefaults& defaults_;
    WallClock now_;
    Logger log_;
};

}  // namespace quorvane

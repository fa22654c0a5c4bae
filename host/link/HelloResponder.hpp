// Responder to the add-on's hellos: answers from the shared defaults and records each hello there.
#pragma once

#include <functional>

#include "QuorvaneKit/link/SharedDefaults.hpp"
#include "QuorvaneKit/records/LockScreenRecords.hpp"
#include "platform/Clock.hpp"
#include "platform/Log.hpp"

namespace quorvane {

// Main thread only.
class HelloResponder {
public:
    HelloResponder(SharedDefaults& defaults, WallClock now, Logger log);

    // Returns the encoded configuration. An undecodable hello gets a configuration that keeps the
    // card off.
    Bytes answer(ByteView request);

    // Called while making an answer that asks the add-on to remove itself.
    std::function<void()> onRemovalDelivered;

private:
    LockScreenAddOnConfiguration configurationFor(const LockScreenAddOnHello& hello);
    void report(const char* what, const Result<void>& written) const;

    SharedDefaults& defaults_;
    WallClock now_;
    Logger log_;
};

}  // namespace quorvane

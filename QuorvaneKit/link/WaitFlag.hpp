// A flag that threads wait for, the one way in which the server's threads pass time.
#pragma once

#include <functional>
#include <memory>

#include "platform/Clock.hpp"

namespace quorvane {

// Any thread. Once raised it stays raised. An interface, so that tests decide how time passes.
class WaitFlag {
public:
    virtual ~WaitFlag() = default;
    virtual void raise() = 0;
    // True as soon as the flag is raised; false when the time has passed without that.
    virtual bool waitFor(Duration limit) = 0;
};

using MakeWaitFlag = std::function<std::unique_ptr<WaitFlag>()>;

// Flags that wait in real time.
std::unique_ptr<WaitFlag> makeWaitFlag();

}  // namespace quorvane

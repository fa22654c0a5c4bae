// Flag that threads wait for; the server's threads wait in no other way.
#pragma once

#include <functional>
#include <memory>

#include "platform/Clock.hpp"

namespace quorvane {

// Any thread. Once raised it stays raised. An interface, so that tests can control time.
class WaitFlag {
public:
    virtual ~WaitFlag() = default;
    virtual void raise() = 0;
    // Returns true as soon as the flag is raised, false when the time limit passes first.
    virtual bool waitFor(Duration limit) = 0;
};

using MakeWaitFlag = std::function<std::unique_ptr<WaitFlag>()>;

// Creates a flag that waits in real time.
std::unique_ptr<WaitFlag> makeWaitFlag();

}  // namespace quorvane

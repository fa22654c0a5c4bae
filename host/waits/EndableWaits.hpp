// Wait flags that can be ended all at once: whoever starts the ports' server must be able to stop
// it while it waits for another process to let go of the ports.
#pragma once

#include <memory>
#include <mutex>
#include <set>

#include "QuorvaneKit/link/WaitFlag.hpp"

namespace quorvane {

// Any thread. The flags outlive it if need be.
class EndableWaits {
public:
    MakeWaitFlag make() const;
    // Raises every flag that there is, and those that are made from now on.
    void end();

private:
    struct State {
        std::mutex mutex;
        bool hasEnded = false;      // under mutex
        std::set<WaitFlag*> flags;  // under mutex
    };
    class Flag;

    std::shared_ptr<State> state_ = std::make_shared<State>();  // shared with the flags
};

}  // namespace quorvane

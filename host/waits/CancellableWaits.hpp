// Wait flags that can all be ended at once, so that the ports' server can be stopped while it waits
// for another process to release the ports.
#pragma once

#include <memory>
#include <mutex>
#include <set>

#include "QuorvaneKit/link/WaitFlag.hpp"

namespace quorvane {

// Any thread. Flags may outlive it.
class CancellableWaits {
public:
    MakeWaitFlag make() const;
    // Raises all existing flags and every flag made later.
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

// The player's state, available to the ports' threads while the main thread is busy.
#pragma once

#include <mutex>

#include "host/players/PlayerSnapshot.hpp"

namespace quorvane {

// Any thread.
class SharedSnapshot {
public:
    void publish(PlayerSnapshot snapshot) {
        // The old snapshot is destroyed after the lock is released, because it may hold a large
        // picture.
        const std::lock_guard guard{mutex_};
        std::swap(snapshot_, snapshot);
    }
    PlayerSnapshot snapshot() const {
        const std::lock_guard guard{mutex_};
        return snapshot_;
    }

private:
    mutable std::mutex mutex_;
    PlayerSnapshot snapshot_;  // under mutex_
};

}  // namespace quorvane

// The player's state as the ports' threads hand it out, while the main thread does something else.
#pragma once

#include <mutex>

#include "host/players/PlayerSnapshot.hpp"

namespace quorvane {

// Any thread.
class PublishedState {
public:
    void publish(PlayerSnapshot snapshot) {
        // What it held is let go of outside the lock: it may be a large picture.
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

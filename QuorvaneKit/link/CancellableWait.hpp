// Waits for conditions that other threads change. All waits of one object can be cancelled at once;
// the server's threads wait in no other way.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>

#include "platform/Clock.hpp"

namespace quorvane {

// Any thread.
class CancellableWait {
public:
    using Condition = std::function<bool()>;

    virtual ~CancellableWait() = default;

    // Runs `change` under the lock under which the conditions are checked, then checks them.
    void update(const std::function<void()>& change);
    // Returns whether the condition holds: as soon as it does, when the time limit has passed, or
    // when the waits are cancelled.
    bool waitFor(Duration limit, const Condition& holds);
    // Permanent: ends all current waits and all later ones at once.
    void cancel();
    bool isCancelled() const;

protected:
    // Returns true as soon as `isOver` does, false when the time limit passes first. Virtual so
    // that tests can control time.
    virtual bool wait(std::unique_lock<std::mutex>& lock, Duration limit, const Condition& isOver);

    mutable std::mutex mutex_;
    std::condition_variable changed_;

private:
    bool isCancelled_ = false;  // under mutex_
};

}  // namespace quorvane

// Typed access to the defaults that the main application and its companions share.
#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "QuorvaneKit/records/LockScreenAddOnSighting.hpp"
#include "QuorvaneKit/records/LockScreenHelloOutcome.hpp"
#include "platform/UserDefaults.hpp"

namespace quorvane {

// Wraps the suite of the App Group. Accesses are serialised, so threads that share this object need
// no further locking, provided they access the suite only through it. A value that is missing or
// has the wrong type reads as the key's default. Without a suite every read returns the default and
// every write is skipped. A write has reached the other processes when it returns, unless it
// returns an error.
class SharedDefaults {
public:
    explicit SharedDefaults(std::optional<UserDefaults> suite) : suite_(std::move(suite)) {}

    bool lockScreenEnabled() const;  // false by default
    Result<void> setLockScreenEnabled(bool isEnabled);

    // The request and its target are read together, and written in an order that keeps them
    // consistent. So no process sees a removal without its target.
    std::optional<LockScreenPendingRemoval> lockScreenPendingRemoval() const;
    Result<void> setLockScreenPendingRemoval(
        const std::optional<LockScreenPendingRemoval>& removal);

    std::optional<LockScreenAddOnSighting> lockScreenAddOnLastSeen() const;
    // A sighting whose texts cannot be encoded is not stored.
    Result<void> setLockScreenAddOnLastSeen(const std::optional<LockScreenAddOnSighting>& sighting);

private:
    std::optional<PropertyValue> read(const char* key) const;

    mutable std::mutex mutex_;
    std::optional<UserDefaults> suite_;
};

}  // namespace quorvane

// The defaults that the main application and its companions share, key by key.
#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "QuorvaneKit/link/SharedDefaultsKey.hpp"
#include "QuorvaneKit/records/LockScreenAddOnSighting.hpp"
#include "QuorvaneKit/records/LockScreenHelloOutcome.hpp"
#include "platform/UserDefaults.hpp"

namespace quorvane {

// Over the suite of the App Group. Accesses are serialised, so that threads which share this object
// (and reach the suite through nothing else) need no care of their own. A value that is missing or
// of another type reads as the key's default. Without a suite every read yields the default and
// every write is skipped. A write has reached the other processes when it returns, unless it says
// why it has not.
class SharedDefaults {
public:
    explicit SharedDefaults(std::optional<UserDefaults> suite) : suite_(std::move(suite)) {}

    bool lockScreenEnabled() const;  // false by default
    Result<void> setLockScreenEnabled(bool isEnabled);

    // The request and its target are read in one look, and written in an order that keeps them
    // together, so that no process sees a removal without the target that it is meant for.
    std::optional<LockScreenPendingRemoval> lockScreenPendingRemoval() const;
    Result<void> setLockScreenPendingRemoval(
        const std::optional<LockScreenPendingRemoval>& removal);

    std::optional<LockScreenAddOnSighting> lockScreenAddOnLastSeen() const;
    // A sighting whose texts do not encode is not kept.
    Result<void> setLockScreenAddOnLastSeen(const std::optional<LockScreenAddOnSighting>& sighting);

private:
    std::optional<PropertyValue> read(SharedDefaultsKey key) const;
    void write(SharedDefaultsKey key, std::optional<PropertyValue> value);

    mutable std::mutex mutex_;
    std::optional<UserDefaults> suite_;
};

}  // namespace quorvane

// Persistent store of one preferences domain or suite.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/PlatformError.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

// Main thread only. `get` sees writes at once; other processes see them after `synchronize` at the
// latest.
struct UserDefaults {
    std::function<std::optional<PropertyValue>(const std::string& key)> get;
    // The values of those keys that have one, read together as a snapshot, because another process
    // may be changing them.
    std::function<PropertyDictionary(const std::vector<std::string>& keys)> getTogether;
    // Nullopt removes the key.
    std::function<void(const std::string& key, std::optional<PropertyValue> value)> set;
    std::function<void()> removeDomain;
    std::function<Result<void>()> synchronize;
};

}  // namespace quorvane

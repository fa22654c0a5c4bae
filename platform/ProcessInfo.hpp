// Facts about this process and its system, read once at the entry point, and operations on the
// process.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/Handle.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

struct SystemVersion {
    std::int64_t major = 0;
    std::int64_t minor = 0;
    std::int64_t patch = 0;
};

struct ProcessInfo {
    std::vector<std::string> arguments;  // the executable first
    std::filesystem::path executable{};  // its file; empty when unknown
    std::int32_t pid = 0;
    SystemVersion systemVersion;
    std::filesystem::path bundle;         // the bundle's folder; empty when not run from one
    PropertyDictionary bundleProperties;  // its property list; empty when unreadable
};

// Keeps the process responsive while the handle is held. Main thread only.
using BeginActivity = std::function<Handle(std::uint64_t options, const std::string& reason)>;

}  // namespace quorvane

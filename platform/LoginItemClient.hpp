// The add-on's login item.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/PlatformError.hpp"

namespace quorvane {

// Main thread only. Acts on the calling application, as the system identifies it.
struct LoginItemClient {
    static constexpr std::int64_t kNotRegistered = 0;
    static constexpr std::int64_t kEnabled = 1;
    static constexpr std::int64_t kRequiresApproval = 2;
    static constexpr std::int64_t kNotFound = 3;

    std::function<std::int64_t()> status;
    std::function<Result<void>()> registerItem;
    std::function<Result<void>()> unregisterItem;
};

}  // namespace quorvane

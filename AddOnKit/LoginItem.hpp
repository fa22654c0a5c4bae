// Keeps the add-on registered to be started at login.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/Log.hpp"
#include "platform/PlatformError.hpp"

namespace quorvane {

// Main thread only.
struct LoginItemClient {
    static constexpr std::int64_t kNotRegistered = 0;
    static constexpr std::int64_t kEnabled = 1;
    static constexpr std::int64_t kRequiresApproval = 2;
    static constexpr std::int64_t kNotFound = 3;

    std::function<std::int64_t()> status;
    std::function<Result<void>()> registerItem;
    std::function<Result<void>()> unregisterItem;
};

// Registers the add-on unless it is, or the user has switched it off. Never stops the launch.
void ensureLoginItemIsRegistered(const LoginItemClient& client, const Logger& log);

}  // namespace quorvane

// Launcher that starts an application bundle as a new background instance, not a child of the
// caller.
#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <variant>
#include <vector>

#include "platform/OpenApplication.hpp"
#include "platform/PlatformError.hpp"

namespace quorvane {

struct DetachedLaunch {
    // The system's launcher exited with a status other than 0.
    struct Failure {
        std::int32_t status = 0;
        std::string output;
        std::string description() const;
        bool operator==(const Failure&) const = default;
    };

    OpenApplication open;

    // Fails with the launcher's failure, or with the error that kept the launcher from running.
    std::expected<void, std::variant<Failure, PlatformError>> launch(
        const std::filesystem::path& bundle, const std::vector<std::string>& arguments) const;
};

}  // namespace quorvane

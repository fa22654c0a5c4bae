// Starts an application bundle as a new background instance that is no child of the caller.
#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <variant>
#include <vector>

#include "platform/OpenCommand.hpp"
#include "platform/PlatformError.hpp"

namespace quorvane {

struct DetachedLaunch {
    // The system's launcher ended with another status than 0.
    struct Failure {
        std::int32_t status = 0;
        std::string output;
        std::string description() const;
        bool operator==(const Failure&) const = default;
    };
    using Ended = OpenCommandEnd;

    RunOpenCommand runOpen;  // the system's launcher

    // Nothing when it was started; else the launcher's failure, or why it could not be run.
    std::expected<void, std::variant<Failure, PlatformError>> launch(
        const std::filesystem::path& bundle, const std::vector<std::string>& arguments) const;
};

}  // namespace quorvane

// The system command that launches applications.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/PlatformError.hpp"

namespace quorvane {

struct OpenCommandEnd {
    std::int32_t status = 0;
    std::string output;  // all of its standard output
};

// Runs the command with the arguments and returns when it has exited. Fails when it cannot be
// started.
using RunOpenCommand =
    std::function<Result<OpenCommandEnd>(const std::vector<std::string>& arguments)>;

}  // namespace quorvane

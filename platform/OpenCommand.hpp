// The system's launcher of applications, a command of its own.
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

// Runs it with the arguments and returns when it has ended. Fails when it could not be started.
using RunOpenCommand =
    std::function<Result<OpenCommandEnd>(const std::vector<std::string>& arguments)>;

}  // namespace quorvane

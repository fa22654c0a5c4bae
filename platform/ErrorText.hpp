// What the log says of an error of the platform: the system's words and its number.
#pragma once

#include <string>

#include "platform/PlatformError.hpp"

namespace quorvane {

inline std::string errorText(const PlatformError& error) {
    return error.description + " (error " + std::to_string(error.code) + ")";
}

}  // namespace quorvane

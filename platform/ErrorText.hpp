// What the log says of an error of the platform: the system's words and its number, if it gave one.
#pragma once

#include <string>

#include "platform/PlatformError.hpp"

namespace quorvane {

inline std::string errorText(const PlatformError& error) {
    if (error.code == 0) return error.description;
    return error.description + " (error " + std::to_string(error.code) + ")";
}

}  // namespace quorvane

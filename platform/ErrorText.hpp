// Log text of a platform error: the system's description and, if it is not 0, the error number.
#pragma once

#include <string>

#include "platform/PlatformError.hpp"

namespace quorvane {

inline std::string errorText(const PlatformError& error) {
    if (error.code == 0) return error.description;
    return error.description + " (error " + std::to_string(error.code) + ")";
}

}  // namespace quorvane

// Errors of system calls as PlatformError.
#pragma once

#include <cerrno>
#include <string>
#include <system_error>

#include "platform/PlatformError.hpp"

namespace quorvane {

// `what` is the call or the file that failed.
inline std::unexpected<PlatformError> posixError(const std::string& what, int code = errno) {
    return std::unexpected{
        PlatformError{.domain = PlatformError::Domain::posix,
                      .code = code,
                      .description = what + ": " + std::system_category().message(code)}};
}

// The log text for an error number.
inline std::string errnoText(int code) {
    return errorText({.code = code, .description = std::system_category().message(code)});
}

}  // namespace quorvane

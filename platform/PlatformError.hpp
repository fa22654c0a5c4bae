// A failed system operation: the system's number and its description. No operation throws.
#pragma once

#include <expected>
#include <string>

namespace quorvane {

struct PlatformError {
    // The source of the number. Numbers of different domains are never compared.
    enum class Domain { posix, cocoa, service, bus };

    Domain domain = Domain::posix;
    int code = 0;
    std::string description;  // for logs; never empty

    bool operator==(const PlatformError&) const = default;
};

// The text for a log: the description and, if it is not 0, the number.
inline std::string errorText(const PlatformError& error) {
    if (error.code == 0) return error.description;
    return error.description + " (error " + std::to_string(error.code) + ")";
}

template <typename T>
using Result = std::expected<T, PlatformError>;

}  // namespace quorvane

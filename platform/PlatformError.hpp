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

template <typename T>
using Result = std::expected<T, PlatformError>;

}  // namespace quorvane

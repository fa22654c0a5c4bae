// How an operation of the system reports failure: the system's own number and its own words.
// Nothing throws.
#pragma once

#include <expected>
#include <string>

namespace quorvane {

struct PlatformError {
    // Where a number comes from; numbers of different domains are never compared.
    enum class Domain { posix, cocoa, service, bus };

    Domain domain = Domain::posix;
    int code = 0;
    std::string description;  // for logs; never empty

    bool operator==(const PlatformError&) const = default;
};

template <typename T>
using Result = std::expected<T, PlatformError>;

}  // namespace quorvane

// Every parser of untrusted input: one function each, called with any bytes. A broken promise ends
// the process.
#pragma once

#include <span>
#include <string_view>

#include "platform/Bytes.hpp"

namespace quorvane {

struct FuzzTarget {
    std::string_view name;
    void (*read)(ByteView);
    // Inputs that get past the first checks.
    std::span<const std::string_view> seeds;
};

std::span<const FuzzTarget> fuzzTargets();

}  // namespace quorvane

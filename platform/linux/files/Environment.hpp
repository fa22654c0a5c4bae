// Environment variables of this process.
#pragma once

#include <cstdlib>
#include <string_view>

namespace quorvane {

// The variable's value; "" when it is unset.
inline std::string_view environmentVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

}  // namespace quorvane

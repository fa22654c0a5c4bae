// What tests may do to the unified log. Its lines are notes: "log subsystem:category 1 text".
#pragma once

#include "tests/macos_runtime/fakes/Fakes.hpp"

namespace macrt {

void setDebugLog(bool isEnabled);

}  // namespace macrt

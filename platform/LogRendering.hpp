// A log line as text, for systems whose log takes text and for tests.
#pragma once

#include <string>

#include "platform/Log.hpp"

namespace quorvane {

// Booleans render as true and false, private text as "<private>" unless `showsPrivate`.
std::string render(const LogLine& line, bool showsPrivate);

}  // namespace quorvane

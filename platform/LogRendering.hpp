// Rendering of a log line as text, for systems with a text log and for tests.
#pragma once

#include <string>

#include "platform/Log.hpp"

namespace quorvane {

// Booleans render as true and false; private text renders as "<private>" unless `showsPrivate` is
// set.
std::string logLineText(const LogLine& line, bool showsPrivate);

}  // namespace quorvane

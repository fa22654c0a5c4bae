// The unified log.
#pragma once

#include "platform/Log.hpp"

namespace quorvane {

// Format strings reach the log as they stand in the program, so that it can store them by their
// place and redact what is private.
LogSink makeLogSinkMacOS();

}  // namespace quorvane

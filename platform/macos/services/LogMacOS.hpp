// Log sink for the unified log.
#pragma once

#include "platform/Log.hpp"

namespace quorvane {

// The log receives format strings unchanged, so that it can store them by address and redact
// private values.
LogSink makeLogSinkMacOS();

}  // namespace quorvane

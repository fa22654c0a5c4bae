// Dates in the link's text form: internet date-time with whole seconds.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Clock.hpp"

namespace quorvane {

// In UTC; drops a fraction of a second.
std::string iso8601Text(WallTime time);

// Accepts "2026-01-31T08:15:00Z", or a numeric offset such as "+01:00" in place of the Z. A date
// outside WallTime's range becomes its nearest limit, because encoders write such dates for "never"
// and "always". Returns nullopt for any other form and for a day or time that does not exist.
std::optional<WallTime> wallTimeFromISO8601(std::string_view text);

}  // namespace quorvane

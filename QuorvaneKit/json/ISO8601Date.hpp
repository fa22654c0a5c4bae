// Dates as the link writes them: internet date-time text with whole seconds.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Clock.hpp"

namespace quorvane {

// In UTC; a fraction of a second is dropped.
std::string iso8601Text(WallTime time);

// "2026-01-31T08:15:00Z", or a numeric offset such as "+01:00" in place of the Z. A date
// that WallTime cannot hold becomes the nearest one that it can; encoders write such dates for
// "never" and "always". Nullopt for any other form and for a day or time that does not exist.
std::optional<WallTime> wallTimeFromISO8601(std::string_view text);

}  // namespace quorvane

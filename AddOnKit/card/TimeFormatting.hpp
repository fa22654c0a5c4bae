// Playing times as text.
#pragma once

#include <optional>
#include <string>

namespace quorvane::TimeFormatting {

// "3:07", or "1:03:07" from an hour. Negative values, NaN and infinities show as "0:00".
std::string text(double seconds);
// The remaining time after a minus sign; a fixed text when the duration is unknown.
std::string remaining(std::optional<double> duration, double position);

}  // namespace quorvane::TimeFormatting

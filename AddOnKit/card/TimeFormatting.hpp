// Playing times as text.
#pragma once

#include <optional>
#include <string>

namespace quorvane::TimeFormatting {

// "3:07", from an hour on "1:03:07". Times below zero and no numbers show as "0:00".
std::string text(double seconds);
// What is left, after a minus sign; a fixed text when the length is not known.
std::string remaining(std::optional<double> duration, double position);

}  // namespace quorvane::TimeFormatting

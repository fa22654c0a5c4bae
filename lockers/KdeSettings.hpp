// Values for the lock screen and the card from the text of KDE Plasma's settings, "kdeglobals".
// Pure values.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace quorvane {

// The unit of the lock screen's lengths in logical pixels: about a line of the user's font.
double greeterUnit(std::string_view settings);

// 0 when the user has turned animations off; nullopt when the settings do not say.
std::optional<std::int32_t> kdeAnimates(std::string_view settings);

}  // namespace quorvane

// The macOS versions whose lock screen supports the card.
#pragma once

#include <cstdint>

namespace quorvane::SupportedMacOS {

// Newer versions are unsupported too, because what lies above their lock screen is not known yet.
constexpr bool supports(std::int64_t major) { return major == 26 || major == 27; }

}  // namespace quorvane::SupportedMacOS

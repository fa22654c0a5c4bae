// The systems whose lock screen the card is made for.
#pragma once

#include <cstdint>

namespace quorvane::SupportedMacOS {

// Newer systems count as unsupported too: what lies above their lock screen is not known yet.
constexpr bool supports(std::int64_t major) { return major == 26 || major == 27; }

}  // namespace quorvane::SupportedMacOS

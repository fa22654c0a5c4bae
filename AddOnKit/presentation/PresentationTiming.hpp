// Durations and distances of the card's appearance and disappearance.
#pragma once

#include <chrono>

#include "platform/Clock.hpp"

namespace quorvane::PresentationTiming {

// From the lock screen's appearance to the card's, so that the lock screen settles first.
inline constexpr Duration kRevealDelay = std::chrono::milliseconds{800};

inline constexpr double kEntrancePerceptualDuration = 0.5;  // seconds, of the entrance's spring
inline constexpr double kEntranceBounce = 0.05;
inline constexpr double kEntranceStartScale = 0.94;
inline constexpr double kEntranceStartOffset = 12;  // points, downward

inline constexpr Duration kFadeIn = std::chrono::milliseconds{350};
inline constexpr Duration kFadeInReducedMotion = std::chrono::milliseconds{300};
inline constexpr Duration kFadeOut = std::chrono::milliseconds{200};

}  // namespace quorvane::PresentationTiming

// The card's shared measures. Lengths are points, fractions are opacities of white.
#pragma once

#include "drawing/Geometry.hpp"

namespace quorvane::PlayerLayout {

struct Insets {
    double top, leading, bottom, trailing;
};

inline constexpr double kCardWidth = 400;
inline constexpr double kCardHeight = 222;
inline constexpr double kCardCornerRadius = 30;
inline constexpr Insets kContentInsets{20, 20, 16, 20};

// The head: artwork, then title and artist in one size, the artist dimmer.
inline constexpr double kArtworkSide = 64;
inline constexpr double kArtworkCornerRadius = 10;
inline constexpr double kArtworkSpacing = 14;  // from the artwork to the texts
inline constexpr double kTrackTextSize = 17;
inline constexpr double kSecondaryOpacity = 0.58;  // artist and times
inline constexpr double kHeartSymbolSize = 20;

// The buttons' frames are also their hit areas.
inline constexpr double kSideButtonSide = 44;  // previous, next and heart
inline constexpr double kPlayButtonSide = 48;

inline constexpr double kVolumeThickness = 6;  // at rest
inline constexpr double kTimeTextSize = 13;

inline constexpr double kSideSymbolSize = 26;  // previous and next
inline constexpr double kPlaySymbolSize = 34;

// The volume row.
inline constexpr double kVolumeRowHeight = 24;
inline constexpr double kSpeakerOpacity = 0.45;
inline constexpr double kTrackOpacity = 0.25;  // the unfilled part of volume and progress
inline constexpr double kSpeakerWidth = 22;
inline constexpr double kSpeakerSpacing = 8;  // from a speaker to the slider

inline constexpr double kPlaceholderOpacity = 0.3;  // the note in place of missing artwork

inline constexpr Size kCardSize{kCardWidth, kCardHeight};

}  // namespace quorvane::PlayerLayout

// How large a picture from outside may be, and how much of it is kept.
#pragma once

#include <algorithm>
#include <cstdint>

namespace quorvane {

struct PictureSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool operator==(const PictureSize&) const = default;
};

// Decoding takes memory for every pixel of the original, however few bytes hold it: that memory
// would be the sender's choice.
inline constexpr std::uint32_t kLongestPictureSide = 16'384;
inline constexpr std::uint64_t kMostPicturePixels = 40'000'000;

constexpr bool isDecodable(const PictureSize& size) {
    return size.width > 0 && size.height > 0 && size.width <= kLongestPictureSide &&
           size.height <= kLongestPictureSide &&
           std::uint64_t{size.width} * size.height <= kMostPicturePixels;
}

// More than any screen shows of the card's artwork.
inline constexpr std::uint32_t kKeptPictureSide = 256;

// The longer side, in pixels, of what is kept of a picture: its shorter one then has
// kKeptPictureSide, or all it has.
constexpr std::uint32_t keptLongerSide(const PictureSize& size) {
    const std::uint32_t longer = std::max(size.width, size.height);
    const std::uint32_t shorter = std::min(size.width, size.height);
    if (shorter <= kKeptPictureSide) return longer;
    return static_cast<std::uint32_t>(std::uint64_t{longer} * kKeptPictureSide / shorter);
}

}  // namespace quorvane

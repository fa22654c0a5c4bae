// Limits for the size of external pictures and for the part of them that is kept.
#pragma once

#include <algorithm>
#include <cstdint>

namespace quorvane {

struct PictureSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool operator==(const PictureSize&) const = default;
};

// Decoding needs memory for every pixel of the original, however few encoded bytes it has, so
// without a limit the sender would choose how much memory is used.
inline constexpr std::uint32_t kLongestPictureSide = 16'384;
inline constexpr std::uint64_t kMaxPicturePixels = 40'000'000;

constexpr bool isDecodable(const PictureSize& size) {
    return size.width > 0 && size.height > 0 && size.width <= kLongestPictureSide &&
           size.height <= kLongestPictureSide &&
           std::uint64_t{size.width} * size.height <= kMaxPicturePixels;
}

// More than any screen shows of the card's artwork.
inline constexpr std::uint32_t kKeptPictureSide = 256;

// The longer side, in pixels, of the kept picture. Its shorter side is kKeptPictureSide, or the
// original's if that is smaller.
constexpr std::uint32_t keptLongerSide(const PictureSize& size) {
    const std::uint32_t longer = std::max(size.width, size.height);
    const std::uint32_t shorter = std::min(size.width, size.height);
    if (shorter <= kKeptPictureSide) return longer;
    return static_cast<std::uint32_t>(std::uint64_t{longer} * kKeptPictureSide / shorter);
}

}  // namespace quorvane

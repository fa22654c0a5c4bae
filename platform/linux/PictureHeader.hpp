// What the first bytes of a picture say, read without decoding it.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/Bytes.hpp"

namespace quorvane {

struct PictureSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool operator==(const PictureSize&) const = default;
};

// The size of a PNG, JPEG, GIF, BMP or WebP picture. Nothing for anything else, and where the
// header is cut off. Never reads beyond the bytes.
std::optional<PictureSize> readPictureSize(ByteView encoded);

// Whether a picture of this size is decoded at all: its memory would be the sender's choice. The
// canvas refuses the same when it decodes.
inline constexpr std::uint32_t kLongestPictureSide = 16'384;
inline constexpr std::uint64_t kMostPicturePixels = 40'000'000;
bool isDecodable(const PictureSize& size);

}  // namespace quorvane

// What the first bytes of a picture say, read without decoding it.
#pragma once

#include <optional>

#include "drawing/pictures/PictureLimits.hpp"
#include "platform/Bytes.hpp"

namespace quorvane {

// The size of a PNG, JPEG, GIF, BMP or WebP picture. Nothing for anything else, and where the
// header is cut off. Never reads beyond the bytes.
std::optional<PictureSize> readPictureSize(ByteView encoded);
// The media type of such a picture, "image/png" for example; null for anything else.
const char* readPictureType(ByteView encoded);

}  // namespace quorvane

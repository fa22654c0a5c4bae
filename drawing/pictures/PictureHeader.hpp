// The size and type of a picture, read from its first bytes without decoding it.
#pragma once

#include <optional>

#include "drawing/pictures/PictureLimits.hpp"
#include "platform/Bytes.hpp"

namespace quorvane {

// The size of a PNG, JPEG, GIF, BMP or WebP picture; nullopt for anything else and for a truncated
// header. Never reads beyond the bytes.
std::optional<PictureSize> readPictureSize(ByteView encoded);
// The media type of such a picture, "image/png" for example; null for anything else.
const char* readPictureType(ByteView encoded);

}  // namespace quorvane

// The decoder of a picture's bytes into the pixels that are shown.
#pragma once

#include <cstdint>

#include "platform/Bytes.hpp"
#include "platform/linux/drawing/CairoHandles.hpp"

namespace quorvane {

struct PixelSize {
    int width = 0;
    int height = 0;
    bool operator==(const PixelSize&) const = default;
};

// The picture fills `size`, cropped around its centre. Returns null when the bytes are not a
// picture or the picture is too large. Any thread.
CairoSurface decodePicture(ByteView encoded, PixelSize size);

}  // namespace quorvane

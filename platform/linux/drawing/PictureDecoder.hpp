// From a picture's bytes to the pixels that are shown of it.
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

// Fills `size`, cropped about the middle. Null when the bytes are no picture or one too large.
// Any thread.
CairoSurface decodePicture(ByteView encoded, PixelSize size);

}  // namespace quorvane

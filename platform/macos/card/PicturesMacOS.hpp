// Pictures decoded by ImageIO.
#pragma once

#include "drawing/Image.hpp"

namespace quorvane {

// Decodes at once, and keeps no more of a picture than a card shows.
ImageRef decodeImageMacOS(ByteView encoded);

}  // namespace quorvane

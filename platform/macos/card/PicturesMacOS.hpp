// Picture decoding with ImageIO.
#pragma once

#include "drawing/Image.hpp"

namespace quorvane {

// Decodes immediately, and keeps no more of a picture than a card shows.
ImageRef decodeImageMacOS(ByteView encoded);

}  // namespace quorvane

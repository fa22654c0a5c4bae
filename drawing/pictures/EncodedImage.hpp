// A picture as encoded bytes. A canvas decodes it on first drawing, at the size that is shown.
#pragma once

#include "drawing/Image.hpp"

namespace quorvane {

class EncodedImage final : public Image {
public:
    explicit EncodedImage(Bytes bytes, State state = State::ready)
        : Image(state), bytes_(std::move(bytes)) {}
    ByteView bytes() const { return bytes_; }

private:
    const Bytes bytes_;
};

// The media type of a PNG, JPEG, GIF, BMP or WebP picture by its first bytes, "image/png" for
// example. Null for anything else, and for a WebP picture that is too large: its decoder, unlike
// the others, decodes it even if the size is refused. Pure.
const char* pictureType(ByteView encoded);

}  // namespace quorvane

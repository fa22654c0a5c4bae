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

}  // namespace quorvane

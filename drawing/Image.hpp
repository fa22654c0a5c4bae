// A picture that a canvas can draw, made by the platform from encoded bytes.
#pragma once

#include <functional>
#include <memory>

#include "platform/Bytes.hpp"

namespace quorvane {

// Immutable and shared. Two scenes show the same picture when they hold the same object.
class Image {
public:
    virtual ~Image() = default;
};

using ImageRef = std::shared_ptr<const Image>;

// Nothing when the bytes are no picture that the system can decode, or one too large to be decoded
// safely. Main thread.
using DecodeImage = std::function<ImageRef(ByteView encoded)>;

}  // namespace quorvane

// A decoded picture. For Objective-C++ only.
#pragma once

#import <CoreGraphics/CoreGraphics.h>

#include "drawing/Image.hpp"
#include "platform/macos/foundation/CFHandle.hpp"

namespace quorvane {

class DecodedImage final : public Image {
public:
    explicit DecodedImage(CFHandle<CGImageRef> pixels) : pixels_(std::move(pixels)) {}
    CGImageRef pixels() const { return pixels_.get(); }

private:
    CFHandle<CGImageRef> pixels_;
};

}  // namespace quorvane

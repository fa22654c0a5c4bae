// Conversions of core values to Core Graphics. For Objective-C++ only.
#pragma once

#import <CoreGraphics/CoreGraphics.h>

#include "drawing/Image.hpp"
#include "drawing/Scene.hpp"
#include "platform/macos/foundation/CFHandle.hpp"

namespace quorvane {

class DecodedImage final : public Image {
public:
    explicit DecodedImage(CFHandle<CGImageRef> pixels) : pixels_(std::move(pixels)) {}
    CGImageRef pixels() const { return pixels_.get(); }

private:
    CFHandle<CGImageRef> pixels_;
};

constexpr CGRect cgRect(const Rect& rect) { return {{rect.x, rect.y}, {rect.width, rect.height}}; }

inline CFHandle<CGColorRef> makeColor(const Color& color) {
    return CFHandle<CGColorRef>{CGColorCreateSRGB(color.red, color.green, color.blue, color.alpha)};
}

inline CFHandle<CGPathRef> makeRoundedPath(const Rect& rect, double cornerRadius) {
    // Core Graphics refuses corners that do not fit.
    const double radius = fittingRadius(rect, cornerRadius);
    return CFHandle<CGPathRef>{CGPathCreateWithRoundedRect(cgRect(rect), radius, radius, nullptr)};
}

}  // namespace quorvane

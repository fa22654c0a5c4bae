// What drawing needs beyond its calls' texts: lines have widths, transforms are values.
#import <CoreText/CoreText.h>
#import <QuartzCore/QuartzCore.h>

#include "tests/macos_runtime/fakes/AppKitFakes.hpp"

namespace {
// Every letter is 10 points wide; a line that was cut is a little narrower than its field.
constexpr double kLetter = 10;
constexpr double kLeftOver = 3;

std::string textOf(const void* object) { return macrt::describe((__bridge id)object); }

void checkCorners(CGRect rect, CGFloat width, CGFloat height) {
    if (2 * width > rect.size.width || 2 * height > rect.size.height)
        macrt::fault("corners larger than their rectangle");
}
}  // namespace

extern "C" {

const NSFontWeight NSFontWeightRegular = 0;
const NSFontWeight NSFontWeightMedium = 0.23;
const NSFontWeight NSFontWeightSemibold = 0.3;
const NSFontWeight NSFontWeightBold = 0.4;

CGGradientRef CGGradientCreateWithColorComponents(CGColorSpaceRef space, const CGFloat* components,
                                                  const CGFloat* locations, size_t count) {
    std::string text = "gradient";
    for (size_t i = 0; i < count; ++i) {
        char stop[32];
        std::snprintf(stop, sizeof stop, " %g:%.2g", locations[i], components[4 * i + 3]);
        text += stop;
    }
    return static_cast<CGGradientRef>(macrt::makeObject(text + " in " + textOf(space)));
}

CGPathRef CGPathCreateWithRoundedRect(CGRect rect, CGFloat cornerWidth, CGFloat cornerHeight,
                                      const CGAffineTransform*) {
    checkCorners(rect, cornerWidth, cornerHeight);
    return macrt::made<CGPathRef>("rounded", rect, cornerWidth, cornerHeight);
}

CTLineRef CTLineCreateWithAttributedString(CFAttributedStringRef attrString) {
    return static_cast<CTLineRef>(macrt::makeObject(textOf(attrString)));
}
double CTLineGetTypographicBounds(CTLineRef line, CGFloat*, CGFloat*, CGFloat*) {
    const std::string text = textOf(line);
    if (text.starts_with("cut at ")) return std::stod(text.substr(7)) - kLeftOver;
    return kLetter * static_cast<double>(text.find('"', 2) - 2);
}
CTLineRef CTLineCreateTruncatedLine(CTLineRef line, double width, CTLineTruncationType type,
                                    CTLineRef token) {
    if (width < CTLineGetTypographicBounds(token, nullptr, nullptr, nullptr)) return nullptr;
    return static_cast<CTLineRef>(macrt::makeObject("cut at " + std::to_string(width) + ", " +
                                                    std::to_string(type) + ", with " +
                                                    textOf(token) + ": " + textOf(line)));
}

CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy) {
    return {sx, 0, 0, sy, 0, 0};
}

const CATransform3D CATransform3DIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
CATransform3D CATransform3DMakeTranslation(CGFloat tx, CGFloat ty, CGFloat tz) {
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, tx, ty, tz, 1};
}
CATransform3D CATransform3DMakeScale(CGFloat sx, CGFloat sy, CGFloat sz) {
    return {sx, 0, 0, 0, 0, sy, 0, 0, 0, 0, sz, 0, 0, 0, 0, 1};
}
// Rows of the first with columns of the second.
CATransform3D CATransform3DConcat(CATransform3D a, CATransform3D b) {
    CATransform3D product = {};
    const auto at = [](auto& t, int row, int column) -> auto& {
        return (&t.m11)[4 * row + column];
    };
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            for (int i = 0; i < 4; ++i)
                at(product, row, column) += at(a, row, i) * at(b, i, column);
    return product;
}
}

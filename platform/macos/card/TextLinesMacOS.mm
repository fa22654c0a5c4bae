#include "platform/macos/card/TextLinesMacOS.hpp"

#import <AppKit/AppKit.h>

#include "drawing/SingleLine.hpp"
#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

NSFontWeight weightOf(FontStyle::Weight weight) {
    switch (weight) {
        case FontStyle::Weight::regular: return NSFontWeightRegular;
        case FontStyle::Weight::medium: return NSFontWeightMedium;
        case FontStyle::Weight::semibold: return NSFontWeightSemibold;
        case FontStyle::Weight::bold: return NSFontWeightBold;
    }
    return NSFontWeightRegular;
}

NSFont* fontOf(const FontStyle& style) {
    const NSFontWeight weight = weightOf(style.weight);
    return style.hasTabularDigits
               ? [NSFont monospacedDigitSystemFontOfSize:style.size weight:weight]
               : [NSFont systemFontOfSize:style.size weight:weight];
}

CFHandle<CTLineRef> makeLine(NSString* text, NSFont* font) {
    NSDictionary* const attributes = @{
        (__bridge NSString*)kCTFontAttributeName : font,
        (__bridge NSString*)kCTForegroundColorFromContextAttributeName : @YES,
    };
    NSAttributedString* const attributed = [[NSAttributedString alloc] initWithString:text
                                                                           attributes:attributes];
    return CFHandle<CTLineRef>{
        CTLineCreateWithAttributedString((__bridge CFAttributedStringRef)attributed)};
}

TextLine layOut(const std::string& text, const FontStyle& style, std::optional<double> fit) {
    NSFont* const font = fontOf(style);
    CFHandle<CTLineRef> line = makeLine(stringFrom(singleLine(text)), font);
    if (fit) {
        const CFHandle<CTLineRef> ellipsis = makeLine(@"…", font);
        line = CFHandle<CTLineRef>{
            CTLineCreateTruncatedLine(line.get(), *fit, kCTLineTruncationEnd, ellipsis.get())};
    }
    // The line is null when the field is narrower than the ellipsis.
    const double width =
        line ? CTLineGetTypographicBounds(line.get(), nullptr, nullptr, nullptr) : 0;
    return {std::move(line), width, {font.ascender, -font.descender}};
}

}  // namespace

const TextLine& TextLinesMacOS::line(const std::string& text, const FontStyle& font,
                                     std::optional<double> fit) {
    return recent_.line(text, font, fit, [&] { return layOut(text, font, fit); });
}

}  // namespace quorvane

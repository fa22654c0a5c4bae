// Core Graphics, Core Text, symbols and fonts: what is drawn is noted as text.
#import <CoreText/CoreText.h>

#include <cstdarg>
#include <cstdio>

#include "tests/macos_runtime/fakes/AppKitFakes.hpp"
#include "tests/macos_runtime/fakes/DrawingFakes.hpp"

namespace {

NSGraphicsContext* current;
double widthOfLetter = 10;
std::vector<std::string> knownSymbols;
const macrt::AtReset reset{[] {
    current = nil;
    widthOfLetter = 10;
    knownSymbols.clear();
}};

__attribute__((format(printf, 1, 2))) std::string formatted(const char* format, ...) {
    char text[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return text;
}

std::string textOf(const CGRect& r) {
    return formatted("%g %g %g %g", r.origin.x, r.origin.y, r.size.width, r.size.height);
}

}  // namespace

// Everything that Core Graphics makes and that only has to be told apart.
@interface DrawingObject : NSObject
@property(nonatomic) std::string text;
@property CGSize size;
@end
@implementation DrawingObject
- (NSString*)description {
    return macrt::makeString("<" + self.text + ">");
}
@end

namespace {
template <typename Reference>
Reference made(const std::string& text, CGSize size = {}) {
    DrawingObject* const object = [DrawingObject new];
    object.text = text;
    object.size = size;
    return (Reference)(__bridge_retained void*)object;
}
DrawingObject* object(const void* reference) { return (__bridge DrawingObject*)reference; }
}  // namespace

extern "C" {

CFStringRef const kCGColorSpaceSRGB = (__bridge CFStringRef) @"sRGB";
CFStringRef const kCTFontAttributeName = (__bridge CFStringRef) @"NSFont";
CFStringRef const kCTForegroundColorFromContextAttributeName =
    (__bridge CFStringRef) @"CTForegroundColorFromContext";

CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy) {
    return {sx, 0, 0, sy, 0, 0};
}
CGColorRef CGColorCreateSRGB(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) {
    return made<CGColorRef>(formatted("%g %g %g %g", red, green, blue, alpha));
}
CGColorSpaceRef CGColorSpaceCreateWithName(CFStringRef name) {
    return made<CGColorSpaceRef>(macrt::textOf((__bridge NSString*)name));
}
CGGradientRef CGGradientCreateWithColorComponents(CGColorSpaceRef space, const CGFloat* components,
                                                  const CGFloat* locations, size_t count) {
    std::string text = object(space).text;
    for (size_t i = 0; i < count; ++i)
        text += formatted(" %g:%.2g", locations[i], components[4 * i + 3]);
    return made<CGGradientRef>(text);
}
CGMutablePathRef CGPathCreateMutable() { return made<CGMutablePathRef>("path"); }
CGPathRef CGPathCreateWithRoundedRect(CGRect rect, CGFloat cornerWidth, CGFloat cornerHeight,
                                      const CGAffineTransform*) {
    if (2 * cornerWidth > rect.size.width || 2 * cornerHeight > rect.size.height)
        macrt::fault("corners larger than their rectangle");
    return made<CGPathRef>(textOf(rect) + formatted(" round %g %g", cornerWidth, cornerHeight));
}
void CGPathAddRect(CGMutablePathRef path, const CGAffineTransform*, CGRect rect) {
    object(path).text += " + " + textOf(rect);
}
void CGPathAddRoundedRect(CGMutablePathRef path, const CGAffineTransform*, CGRect rect,
                          CGFloat cornerWidth, CGFloat cornerHeight) {
    object(path).text +=
        " + " + textOf(rect) + formatted(" round %g %g", cornerWidth, cornerHeight);
}
size_t CGImageGetWidth(CGImageRef image) { return static_cast<size_t>(object(image).size.width); }
size_t CGImageGetHeight(CGImageRef image) { return static_cast<size_t>(object(image).size.height); }

void CGContextSaveGState(CGContextRef) { macrt::note("save"); }
void CGContextRestoreGState(CGContextRef) { macrt::note("restore"); }
void CGContextTranslateCTM(CGContextRef, CGFloat tx, CGFloat ty) {
    macrt::note(formatted("translate %g %g", tx, ty));
}
void CGContextScaleCTM(CGContextRef, CGFloat sx, CGFloat sy) {
    macrt::note(formatted("scale %g %g", sx, sy));
}
void CGContextAddPath(CGContextRef, CGPathRef path) { macrt::note("path " + object(path).text); }
void CGContextFillPath(CGContextRef) { macrt::note("fill"); }
void CGContextClip(CGContextRef) { macrt::note("clip"); }
void CGContextClipToRect(CGContextRef, CGRect rect) { macrt::note("clip " + textOf(rect)); }
void CGContextSetFillColorWithColor(CGContextRef, CGColorRef color) {
    macrt::note("color " + object(color).text);
}
void CGContextSetAlpha(CGContextRef, CGFloat alpha) { macrt::note(formatted("alpha %g", alpha)); }
void CGContextSetBlendMode(CGContextRef, CGBlendMode mode) {
    macrt::note(formatted("blend %d", static_cast<int>(mode)));
}
void CGContextSetInterpolationQuality(CGContextRef, CGInterpolationQuality quality) {
    macrt::note(formatted("quality %d", static_cast<int>(quality)));
}
void CGContextBeginTransparencyLayer(CGContextRef, CFDictionaryRef) { macrt::note("begin layer"); }
void CGContextEndTransparencyLayer(CGContextRef) { macrt::note("end layer"); }
void CGContextSetTextMatrix(CGContextRef, CGAffineTransform t) {
    macrt::note(formatted("text matrix %g %g %g %g", t.a, t.b, t.c, t.d));
}
void CGContextSetTextPosition(CGContextRef, CGFloat x, CGFloat y) {
    macrt::note(formatted("text at %g %g", x, y));
}
void CGContextDrawImage(CGContextRef, CGRect rect, CGImageRef image) {
    macrt::note("image " + object(image).text + " in " + textOf(rect));
}
void CGContextDrawLinearGradient(CGContextRef, CGGradientRef gradient, CGPoint startPoint,
                                 CGPoint endPoint, CGGradientDrawingOptions options) {
    macrt::note("gradient " + object(gradient).text +
                formatted(" from %g %g to %g %g, %u", startPoint.x, startPoint.y, endPoint.x,
                          endPoint.y, options));
}

CTLineRef CTLineCreateWithAttributedString(CFAttributedStringRef attrString) {
    const std::string text = macrt::describe((__bridge id)attrString);
    const auto letters = static_cast<double>(text.find('"', 2) - 2);
    return made<CTLineRef>(text, {widthOfLetter * letters, 0});
}
CTLineRef CTLineCreateTruncatedLine(CTLineRef line, double width, CTLineTruncationType type,
                                    CTLineRef token) {
    if (width < object(token).size.width) return nullptr;
    return made<CTLineRef>(formatted("cut at %g of kind %u with ", width, type) +
                               object(token).text + ": " + object(line).text,
                           {width - 3, 0});
}
double CTLineGetTypographicBounds(CTLineRef line, CGFloat*, CGFloat*, CGFloat*) {
    return object(line).size.width;
}
void CTLineDraw(CTLineRef line, CGContextRef) { macrt::note("line " + object(line).text); }

const NSFontWeight NSFontWeightRegular = 0;
const NSFontWeight NSFontWeightMedium = 0.23;
const NSFontWeight NSFontWeightSemibold = 0.3;
const NSFontWeight NSFontWeightBold = 0.4;
}

@implementation NSFont {
    std::string name_;
}
static NSFont* makeFont(const char* kind, CGFloat size, NSFontWeight weight) {
    NSFont* const font = [NSFont new];
    font->name_ = formatted("<%s %g %g>", kind, size, weight);
    return font;
}
+ (NSFont*)systemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight {
    return makeFont("system", fontSize, weight);
}
+ (NSFont*)monospacedDigitSystemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight {
    return makeFont("digits", fontSize, weight);
}
- (CGFloat)ascender {
    return 12;
}
- (CGFloat)descender {
    return -4;
}
- (NSString*)description {
    return macrt::makeString(name_);
}
@end

@implementation NSImageSymbolConfiguration {
@package
    std::string text_;
}
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(NSFontWeight)weight {
    NSImageSymbolConfiguration* const configuration = [self new];
    configuration->text_ = formatted("size %g weight %g", pointSize, weight);
    return configuration;
}
+ (instancetype)configurationWithPaletteColors:(NSArray<NSColor*>*)paletteColors {
    NSImageSymbolConfiguration* const configuration = [self new];
    configuration->text_ = "palette " + macrt::describe(paletteColors);
    return configuration;
}
- (instancetype)configurationByApplyingConfiguration:(NSImageSymbolConfiguration*)other {
    NSImageSymbolConfiguration* const configuration = [NSImageSymbolConfiguration new];
    configuration->text_ = text_ + ", " + other->text_;
    return configuration;
}
@end

@interface NSImage () <Recorded>
@end
@implementation NSImage {
    std::string text_;
    NSSize size_;
}
+ (instancetype)imageWithSystemSymbolName:(NSString*)symbolName
                 accessibilityDescription:(NSString*)description {
    const std::string name = macrt::textOf(symbolName);
    if (std::find(knownSymbols.begin(), knownSymbols.end(), name) == knownSymbols.end()) return nil;
    NSImage* const image = [self new];
    image->text_ = name;
    return image;
}
- (NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration {
    NSImage* const image = [NSImage new];
    image->text_ = text_ + " (" + configuration->text_ + ")";
    image->size_ = {20, 10};
    return image;
}
- (NSSize)size {
    return size_;
}
- (void)drawInRect:(NSRect)dstSpacePortionRect
          fromRect:(NSRect)srcSpacePortionRect
         operation:(NSCompositingOperation)op
          fraction:(CGFloat)requestedAlpha
    respectFlipped:(BOOL)respectContextIsFlipped
             hints:(NSDictionary*)hints {
}
- (NSString*)description {
    return macrt::makeString("<" + text_ + ">");
}
@end

@interface NSGraphicsContext ()
@property(readwrite) CGContextRef CGContext;
@end
@implementation NSGraphicsContext
+ (NSGraphicsContext*)currentContext {
    return current;
}
+ (void)setCurrentContext:(NSGraphicsContext*)context {
    current = context;
}
@end

namespace macrt {

void drawing(const std::function<void()>& action) {
    int target = 0;
    NSGraphicsContext* const context = [NSGraphicsContext new];
    context.CGContext = reinterpret_cast<CGContextRef>(&target);
    current = context;
    action();
    current = nil;
}

CGImageRef makePicture(const std::string& name, double width, double height) {
    return made<CGImageRef>(name, {width, height});
}

void setKnownSymbols(std::vector<std::string> names) { knownSymbols = std::move(names); }

}  // namespace macrt

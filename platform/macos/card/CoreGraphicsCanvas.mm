#include "platform/macos/card/CoreGraphicsCanvas.hpp"

#include "platform/macos/card/CoreGraphicsValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

// Saves the context's state and restores it at the end of the scope.
class SavedState {
public:
    explicit SavedState(CGContextRef context) : context_(context) { CGContextSaveGState(context); }
    SavedState(const SavedState&) = delete;
    SavedState& operator=(const SavedState&) = delete;
    ~SavedState() { CGContextRestoreGState(context_); }

private:
    CGContextRef context_;
};

void addRounded(CGContextRef context, const Rect& rect, double cornerRadius) {
    CGContextAddPath(context, makeRoundedPath(rect, cornerRadius).get());
}

void setFill(CGContextRef context, const Color& color) {
    CGContextSetFillColorWithColor(context, makeColor(color).get());
}

// Fades the earlier drawing to the strengths of the stops.
void drawFade(CGContextRef context, const TextNode& node) {
    const auto stops = fadeStops(node);
    std::array<CGFloat, 4 * stops.size()> components{};
    std::array<CGFloat, stops.size()> places{};
    for (std::size_t i = 0; i < stops.size(); ++i) {
        // The stops are in ascending order, as Core Graphics requires.
        const FadeStop& stop = stops[i];
        places[i] = stop.place;
        components[4 * i + 3] = stop.strength;
    }
    const CFHandle<CGColorSpaceRef> space{CGColorSpaceCreateWithName(kCGColorSpaceSRGB)};
    const CFHandle<CGGradientRef> gradient{CGGradientCreateWithColorComponents(
        space.get(), components.data(), places.data(), places.size())};
    CGContextSetBlendMode(context, kCGBlendModeDestinationIn);
    const Rect& frame = node.frame;
    CGContextDrawLinearGradient(context, gradient.get(), {frame.x, frame.y},
                                {frame.maxX(), frame.y}, 0);
}

// Draws a scene's nodes, one function per kind.
struct Painter {
    CGContextRef context;
    bool isRightToLeft;
    TextLinesMacOS& lines;
    SymbolImages& symbols;

    void operator()(const ShapeNode& shape) const {
        addRounded(context, shape.frame, shape.cornerRadius);
        if (shape.edgeWidth > 0)
            addRounded(context, shape.frame.grownBy(-shape.edgeWidth),
                       shape.cornerRadius - shape.edgeWidth);
        setFill(context, shape.fill);
        // The even-odd rule keeps the area inside both outlines empty.
        CGContextEOFillPath(context);
    }

    void operator()(const ImageNode& node) const {
        const auto* const image = dynamic_cast<const DecodedImage*>(node.image.get());
        if (image == nullptr) return;
        const SavedState state{context};
        addRounded(context, node.frame, node.cornerRadius);
        CGContextClip(context);
        const Rect place =
            covering(node.frame, {static_cast<double>(CGImageGetWidth(image->pixels())),
                                  static_cast<double>(CGImageGetHeight(image->pixels()))});
        // Flips the context, because pictures are drawn upright where y grows upward.
        CGContextTranslateCTM(context, place.x, place.maxY());
        CGContextScaleCTM(context, 1, -1);
        CGContextSetInterpolationQuality(context, kCGInterpolationHigh);
        CGContextDrawImage(context, {{0, 0}, {place.width, place.height}}, image->pixels());
    }

    void operator()(const SymbolNode& node) const {
        NSImage* const image = symbols.image(node);
        const Rect place = centredIn(node.frame, {image.size.width, image.size.height});
        const SavedState state{context};
        CGContextClipToRect(context, cgRect(node.frame));
        if (isRightToLeft && node.facesTextDirection()) {
            CGContextTranslateCTM(context, 2 * node.frame.midX(), 0);
            CGContextScaleCTM(context, -1, 1);
        }
        [image drawInRect:cgRect(place)
                  fromRect:NSRect {}
                 operation:NSCompositingOperationSourceOver
                  fraction:1
            respectFlipped:YES
                     hints:nil];
    }

    void operator()(const TextNode& node) const {
        if (node.scroll && node.scroll->motion) return;  // it has its own view
        const SavedState state{context};
        CGContextClipToRect(context, cgRect(node.frame));
        setFill(context, node.color);
        // Flips the text, because letters are drawn upright where y grows upward.
        CGContextSetTextMatrix(context, CGAffineTransformMakeScale(1, -1));
        if (node.scroll)
            drawScrolling(node);
        else
            drawStill(node);
    }

    void drawStill(const TextNode& node) const {
        const TextLine* line = &lines.line(node.text, node.font);
        if (isTooWide(node, line->width))
            line = &lines.line(node.text, node.font, node.frame.width);
        drawLine(*line, node, leftEdgeOf(node, line->width, isRightToLeft));
    }

    void drawScrolling(const TextNode& node) const {
        const TextLine& line = lines.line(node.text, node.font);
        CGContextBeginTransparencyLayer(context, nullptr);
        const double rest = leftEdgeOf(node, line.width, isRightToLeft);
        for (const double left : copiesOf(node, rest, line.width, isRightToLeft))
            drawLine(line, node, left);
        drawFade(context, node);
        CGContextEndTransparencyLayer(context);
    }

    void drawLine(const TextLine& line, const TextNode& node, double left) const {
        if (!line.line) return;
        CGContextSetTextPosition(context, left, baselineOf(node.frame, line.heights));
        CTLineDraw(line.line.get(), context);
    }

    void operator()(const GroupBegin& group) const {
        CGContextSaveGState(context);
        const Transform& transform = group.transform;
        CGContextTranslateCTM(context, transform.centre.x + transform.offset.x,
                              transform.centre.y + transform.offset.y);
        CGContextScaleCTM(context, transform.scale, transform.scale);
        CGContextTranslateCTM(context, -transform.centre.x, -transform.centre.y);
        if (group.clip) {
            addRounded(context, *group.clip, group.clipCornerRadius);
            CGContextClip(context);
        }
        CGContextSetAlpha(context, group.opacity);
        CGContextBeginTransparencyLayer(context, nullptr);
    }

    void operator()(GroupEnd) const {
        CGContextEndTransparencyLayer(context);
        CGContextRestoreGState(context);
    }
};

}  // namespace

void CoreGraphicsCanvas::draw(const Scene& scene) {
    const CGContextRef context = NSGraphicsContext.currentContext.CGContext;
    if (context == nullptr) return;
    const Painter painter{context, scene.isRightToLeft, lines_, symbols_};
    for (const SceneNode& node : scene.nodes) std::visit(painter, node);
}

}  // namespace quorvane

#include "platform/linux/drawing/TextDrawing.hpp"

#include <algorithm>
#include <cmath>
#include <optional>

#include "platform/linux/drawing/GlyphCoverage.hpp"
#include "platform/linux/drawing/ShapedRuns.hpp"

namespace quorvane {
namespace {

// Snaps to whole pixels unless the context is rotated, so that letters are equally sharp everywhere
// and their spacing does not jitter while the line moves.
Point snapped(cairo_t* cairo, Point point) {
    cairo_matrix_t matrix{};
    cairo_get_matrix(cairo, &matrix);
    if (matrix.xy != 0 || matrix.yx != 0) return point;
    cairo_user_to_device(cairo, &point.x, &point.y);
    point = {std::round(point.x), std::round(point.y)};
    cairo_device_to_user(cairo, &point.x, &point.y);
    return point;
}

CairoPattern solidPattern(const Color& color) {
    return CairoPattern{cairo_pattern_create_rgba(color.red, color.green, color.blue, color.alpha)};
}

// The line's colour, fading toward both ends of the frame.
CairoPattern fadePattern(const TextNode& node) {
    CairoPattern paint{cairo_pattern_create_linear(node.frame.x, 0, node.frame.maxX(), 0)};
    const Color& color = node.color;
    for (const FadeStop& stop : fadeStops(node))
        cairo_pattern_add_color_stop_rgba(paint.get(), stop.place, color.red, color.green,
                                          color.blue, color.alpha * stop.strength);
    return paint;
}

constexpr double kPictureMargin = 8;     // points around the line, for overhanging letters
constexpr double kWidestPicture = 8192;  // pixels

void fillOpaque(cairo_t* cairo, const TextLine& line, const Color& color, Point start) {
    cairo_set_source_rgb(cairo, color.red, color.green, color.blue);
    fillLine(cairo, line, start);
}

// Returns null for a line too long to cache as a picture.
const TextPicture* pictureOf(const TextLine& line, const Color& color, double scale) {
    TextPicture& picture = line.picture;
    if (picture.surface && picture.color == color && picture.scale == scale) return &picture;
    const double width = std::ceil((line.width + 2 * kPictureMargin) * scale);
    const double height =
        std::ceil((line.heights.ascent + line.heights.descent + 2 * kPictureMargin) * scale);
    if (width > kWidestPicture) return nullptr;
    picture = {CairoSurface{cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(width),
                                                       static_cast<int>(height))},
               color, scale};
    const CairoContext cairo{cairo_create(picture.surface.get())};
    cairo_scale(cairo.get(), scale, scale);
    // The baseline is on a whole pixel, as it is where the picture is placed.
    const double baseline = std::round((kPictureMargin + line.heights.ascent) * scale) / scale;
    fillOpaque(cairo.get(), line, color, {kPictureMargin, baseline});
    return &picture;
}

// Sets the context's source to the line's own opaque pixels.
void setLineAsSource(cairo_t* cairo, const TextLine& line, const Color& color, Point start,
                     std::optional<double> scale) {
    const auto* picture = scale ? pictureOf(line, color, *scale) : nullptr;
    if (!picture) {
        cairo_push_group(cairo);
        fillOpaque(cairo, line, color, start);
        return cairo_pop_group_to_source(cairo);
    }
    const CairoPattern pattern{cairo_pattern_create_for_surface(picture->surface.get())};
    cairo_matrix_t matrix{};
    cairo_matrix_init(
        &matrix, *scale, 0, 0, *scale, std::round(kPictureMargin * *scale) - start.x * *scale,
        std::round((kPictureMargin + line.heights.ascent) * *scale) - start.y * *scale);
    cairo_pattern_set_matrix(pattern.get(), &matrix);
    cairo_pattern_set_filter(pattern.get(), CAIRO_FILTER_NEAREST);
    cairo_set_source(cairo, pattern.get());
}

// The line with its left edge and baseline at `start`, on whole pixels. `paint` is its colour at
// each place.
void drawLine(cairo_t* cairo, const TextLine& line, const Color& color, Point start,
              cairo_pattern_t* paint) {
    const CairoState state{cairo};
    const std::optional<double> scale = uprightScale(cairo);
    const auto coverage = scale ? GlyphCoverage::of(line, *scale) : nullptr;
    if (!coverage) {
        setLineAsSource(cairo, line, color, start, scale);
        return cairo_mask(cairo, paint);
    }
    cairo_set_source(cairo, paint);
    cairo_user_to_device(cairo, &start.x, &start.y);
    cairo_identity_matrix(cairo);
    coverage->show(cairo, static_cast<int>(std::lround(start.x)),
                   static_cast<int>(std::lround(start.y)));
}

void drawCopies(cairo_t* cairo, const TextNode& node, bool isRightToLeft, TextLayoutCache& texts,
                cairo_pattern_t* paint) {
    const TextLine& line = texts.line(node.text, node.font);
    // The resting place is rounded separately, so that frames timed for whole pixels of scrolling
    // move by whole pixels.
    const Point start = snapped(
        cairo, {leftEdgeOf(node, line.width, isRightToLeft), baselineOf(node.frame, line.heights)});
    for (const double left : copiesOf(node, start.x, line.width, isRightToLeft))
        drawLine(cairo, line, node.color, snapped(cairo, {left, start.y}), paint);
}

void drawStill(cairo_t* cairo, const TextNode& node, bool isRightToLeft, TextLayoutCache& texts) {
    const TextLine* line = &texts.line(node.text, node.font);
    if (isTooWide(node, line->width)) line = &texts.line(node.text, node.font, node.frame.width);
    const Point start = snapped(cairo, {leftEdgeOf(node, line->width, isRightToLeft),
                                        baselineOf(node.frame, line->heights)});
    drawLine(cairo, *line, node.color, start, solidPattern(node.color).get());
}

// A gradient takes far longer than a solid colour, so only the two ends use it. The ends meet the
// middle on whole pixels, because otherwise a seam would show.
void drawScrolling(cairo_t* cairo, const TextNode& node, bool isRightToLeft,
                   TextLayoutCache& texts) {
    const Rect& frame = node.frame;
    const double fade = std::min(node.scroll->fade, frame.width / 2);
    const double left = snapped(cairo, {frame.x + fade, 0}).x;
    const double right = snapped(cairo, {frame.maxX() - fade, 0}).x;
    const CairoPattern ends = fadePattern(node);
    const auto drawBetween = [&](double begin, double end, cairo_pattern_t* paint) {
        if (end <= begin) return;
        const CairoState state{cairo};
        cairo_rectangle(cairo, begin, frame.y, end - begin, frame.height);
        cairo_clip(cairo);
        drawCopies(cairo, node, isRightToLeft, texts, paint);
    };
    drawBetween(frame.x, left, ends.get());
    drawBetween(left, right, solidPattern(node.color).get());
    drawBetween(right, frame.maxX(), ends.get());
}

}  // namespace

void drawText(cairo_t* cairo, const TextNode& node, bool isRightToLeft, TextLayoutCache& texts) {
    const CairoState state{cairo};
    const Rect& frame = node.frame;
    cairo_rectangle(cairo, frame.x, frame.y, frame.width, frame.height);
    cairo_clip(cairo);
    if (node.scroll)
        drawScrolling(cairo, node, isRightToLeft, texts);
    else
        drawStill(cairo, node, isRightToLeft, texts);
}

}  // namespace quorvane

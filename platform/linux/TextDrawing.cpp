#include "platform/linux/TextDrawing.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/linux/TextRuns.hpp"

namespace quorvane {
namespace {

// To whole pixels where that can be said: letters are then equally sharp wherever they stand, and
// their distances do not tremble while the line moves.
Point snapped(cairo_t* cairo, Point point) {
    cairo_matrix_t matrix{};
    cairo_get_matrix(cairo, &matrix);
    if (matrix.xy != 0 || matrix.yx != 0) return point;
    cairo_user_to_device(cairo, &point.x, &point.y);
    point = {std::round(point.x), std::round(point.y)};
    cairo_device_to_user(cairo, &point.x, &point.y);
    return point;
}

CairoPattern fadeMask(const TextNode& node) {
    CairoPattern mask{cairo_pattern_create_linear(node.frame.x, 0, node.frame.maxX(), 0)};
    for (const FadeStop& stop : fadeStops(node))
        cairo_pattern_add_color_stop_rgba(mask.get(), stop.place, 0, 0, 0, stop.strength);
    return mask;
}

constexpr double kPictureMargin = 8;     // points around the line, for what reaches out of it
constexpr double kWidestPicture = 8192;  // pixels

// Filling a line's outlines anew for each frame would cost more than all the rest of it.
// Null for a line too long to be kept as a picture.
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
    cairo_set_source_rgba(cairo.get(), color.red, color.green, color.blue, color.alpha);
    // The baseline lies on whole pixels, as it will where the picture is put.
    const double baseline = std::round((kPictureMargin + line.heights.ascent) * scale) / scale;
    fillLine(cairo.get(), line, {kPictureMargin, baseline});
    return &picture;
}

// As `fillLine`, from the line's picture; `start` is on whole pixels. Seen through the mask if
// there is one.
void showPicture(cairo_t* cairo, const TextLine& line, const Color& color, Point start,
                 cairo_pattern_t* mask) {
    cairo_matrix_t matrix{};
    cairo_get_matrix(cairo, &matrix);
    const bool isUpright = matrix.xy == 0 && matrix.yx == 0 && matrix.xx == matrix.yy;
    const CairoState state{cairo};
    if (const auto* picture = isUpright ? pictureOf(line, color, matrix.xx) : nullptr) {
        const double scale = picture->scale;
        const CairoPattern pattern{cairo_pattern_create_for_surface(picture->surface.get())};
        cairo_matrix_init(
            &matrix, scale, 0, 0, scale, std::round(kPictureMargin * scale) - start.x * scale,
            std::round((kPictureMargin + line.heights.ascent) * scale) - start.y * scale);
        cairo_pattern_set_matrix(pattern.get(), &matrix);
        cairo_pattern_set_filter(pattern.get(), CAIRO_FILTER_NEAREST);
        cairo_set_source(cairo, pattern.get());
    } else {
        cairo_push_group(cairo);
        fillLine(cairo, line, start);
        cairo_pop_group_to_source(cairo);
    }
    mask ? cairo_mask(cairo, mask) : cairo_paint(cairo);
}

void drawCopies(cairo_t* cairo, const TextNode& node, bool isRightToLeft, TextLayouts& texts,
                cairo_pattern_t* mask) {
    const TextLine& line = texts.line(node.text, node.font);
    // The rest is rounded by itself: frames made for whole pixels of the way then show whole
    // pixels.
    const Point start = snapped(
        cairo, {restOf(node, line.width, isRightToLeft), baselineOf(node.frame, line.heights)});
    for (const double left : copiesOf(node, start.x, line.width, isRightToLeft))
        showPicture(cairo, line, node.color, snapped(cairo, {left, start.y}), mask);
}

void drawStill(cairo_t* cairo, const TextNode& node, bool isRightToLeft, TextLayouts& texts) {
    const TextLine* line = &texts.line(node.text, node.font);
    if (isTooWide(node, line->width)) line = &texts.line(node.text, node.font, node.frame.width);
    const Point start = snapped(cairo, {leftEdgeOf(node, line->width, isRightToLeft),
                                        baselineOf(node.frame, line->heights)});
    // A time is drawn once. What comes again, as beside a moving marquee, comes many times.
    if (std::exchange(line->isDrawn, true))
        showPicture(cairo, *line, node.color, start, nullptr);
    else
        fillLine(cairo, *line, start);
}

// Masks take far longer than plain copies, so only the two ends are drawn through one. They meet
// the middle on whole pixels, or a seam would show.
void drawScrolling(cairo_t* cairo, const TextNode& node, bool isRightToLeft, TextLayouts& texts) {
    const Rect& frame = node.frame;
    const double fade = std::min(node.scroll->fade, frame.width / 2);
    const double left = snapped(cairo, {frame.x + fade, 0}).x;
    const double right = snapped(cairo, {frame.maxX() - fade, 0}).x;
    const CairoPattern ends = fadeMask(node);
    const auto drawBetween = [&](double begin, double end, cairo_pattern_t* mask) {
        if (end <= begin) return;
        const CairoState state{cairo};
        cairo_rectangle(cairo, begin, frame.y, end - begin, frame.height);
        cairo_clip(cairo);
        drawCopies(cairo, node, isRightToLeft, texts, mask);
    };
    drawBetween(frame.x, left, ends.get());
    drawBetween(left, right, nullptr);
    drawBetween(right, frame.maxX(), ends.get());
}

}  // namespace

void drawText(cairo_t* cairo, const TextNode& node, bool isRightToLeft, TextLayouts& texts) {
    const CairoState state{cairo};
    const Rect& frame = node.frame;
    cairo_rectangle(cairo, frame.x, frame.y, frame.width, frame.height);
    cairo_clip(cairo);
    const Color& color = node.color;
    cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha);
    if (node.scroll)
        drawScrolling(cairo, node, isRightToLeft, texts);
    else
        drawStill(cairo, node, isRightToLeft, texts);
}

}  // namespace quorvane

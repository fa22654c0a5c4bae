#include "platform/linux/TextDrawing.hpp"

#include <pango/pangocairo.h>

#include <cmath>

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

void showLine(cairo_t* cairo, const TextLine& line, Point start) {
    cairo_move_to(cairo, start.x, start.y);
    pango_cairo_show_layout_line(cairo, pango_layout_get_line_readonly(line.layout.get(), 0));
}

double baseline(const Rect& frame, const TextLine& line) {
    return frame.midY() + (line.ascent - line.descent) / 2;
}

double alignedLeft(const TextNode& node, double width, bool isRightToLeft) {
    const double room = node.frame.width - width;
    if (node.alignment == TextAlignment::center) return node.frame.x + room / 2;
    const bool isLeft = (node.alignment == TextAlignment::leading) != isRightToLeft;
    return node.frame.x + (isLeft ? 0 : room);
}

void drawStill(cairo_t* cairo, const TextNode& node, bool isRightToLeft, TextLayouts& texts) {
    const TextLine* line = &texts.line(node.text, node.font);
    // Rounding alone is no reason to cut.
    constexpr double kTolerance = 0.5;
    if (line->width > node.frame.width + kTolerance)
        line = &texts.line(node.text, node.font, node.frame.width);
    showLine(cairo, *line,
             snapped(cairo,
                     {alignedLeft(node, line->width, isRightToLeft), baseline(node.frame, *line)}));
}

// Full strength between the two fades, which rise slowly at both their ends.
CairoPattern fadeMask(const Rect& frame, double fade) {
    CairoPattern mask{cairo_pattern_create_linear(frame.x, 0, frame.maxX(), 0)};
    const double share = std::min(fade / frame.width, 0.5);
    for (const double t : {0.0, 0.25, 0.5, 0.75, 1.0}) {
        const double alpha = t * t * (3 - 2 * t);
        cairo_pattern_add_color_stop_rgba(mask.get(), share * t, 0, 0, 0, alpha);
        cairo_pattern_add_color_stop_rgba(mask.get(), 1 - share * t, 0, 0, 0, alpha);
    }
    return mask;
}

void drawScrolling(cairo_t* cairo, const TextNode& node, bool isRightToLeft, TextLayouts& texts) {
    const TextNode::Scroll& scroll = *node.scroll;
    const TextLine& line = texts.line(node.text, node.font);
    const double distance = line.width + scroll.gap;
    if (distance <= 0) return;
    const double y = baseline(node.frame, line);
    const double rest = isRightToLeft ? node.frame.maxX() - line.width : node.frame.x;
    const double direction = isRightToLeft ? 1 : -1;
    // The way is rounded by itself: frames made for whole pixels of it then show whole pixels.
    const Point start = snapped(cairo, {rest, y});
    for (double way = scroll.offset; way > -node.frame.width; way -= distance) {
        const Point moved = snapped(cairo, {start.x + direction * way, start.y});
        if (moved.x < node.frame.maxX() && moved.x + line.width > node.frame.x)
            showLine(cairo, line, moved);
    }
}

}  // namespace

void drawText(cairo_t* cairo, const TextNode& node, bool isRightToLeft, TextLayouts& texts) {
    const CairoState state{cairo};
    const Rect& frame = node.frame;
    cairo_rectangle(cairo, frame.x, frame.y, frame.width, frame.height);
    cairo_clip(cairo);
    const Color& color = node.color;
    const bool fades = node.scroll && node.scroll->fade > 0;
    if (fades) cairo_push_group(cairo);
    cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha);
    if (node.scroll)
        drawScrolling(cairo, node, isRightToLeft, texts);
    else
        drawStill(cairo, node, isRightToLeft, texts);
    if (!fades) return;
    cairo_pop_group_to_source(cairo);
    cairo_mask(cairo, fadeMask(frame, node.scroll->fade).get());
}

}  // namespace quorvane

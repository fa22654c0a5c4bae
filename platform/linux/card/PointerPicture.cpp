#include "platform/linux/card/PointerPicture.hpp"

#include <array>

#include "platform/linux/drawing/CairoHandles.hpp"

namespace quorvane {
namespace {

constexpr double kOutline = 1;  // points
// The corners in order, from the tip.
constexpr std::array<Point, 7> kArrow{
    {{0, 0}, {0, 16.2}, {3.7, 12.8}, {6.1, 18.4}, {8.9, 17.2}, {6.5, 11.8}, {11.6, 11.6}}};

void arrowPath(cairo_t* cairo) {
    for (const Point& corner : kArrow) cairo_line_to(cairo, corner.x, corner.y);
    cairo_close_path(cairo);
}

}  // namespace

void drawPointer(cairo_t* cairo, Point tip, double scale, double alpha) {
    const CairoState state{cairo};
    cairo_translate(cairo, tip.x, tip.y);
    cairo_scale(cairo, scale, scale);
    cairo_new_path(cairo);
    arrowPath(cairo);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_width(cairo, 2 * kOutline);
    cairo_set_source_rgba(cairo, 1, 1, 1, alpha);
    cairo_stroke_preserve(cairo);
    cairo_set_source_rgba(cairo, 0, 0, 0, alpha);
    cairo_fill(cairo);
}

Rect pointerArea(Point tip) {
    const Rect arrow{tip.x, tip.y, kArrow[6].x, kArrow[3].y};
    return arrow.grownBy(kOutline + 1);
}

}  // namespace quorvane

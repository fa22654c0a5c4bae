#include "platform/linux/card/CardPainter.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "drawing/pictures/CardChrome.hpp"

namespace quorvane {
namespace {

constexpr double kPointerOutline = 1;  // points
// The corners in order, from the tip.
constexpr std::array<Point, 7> kPointer{
    {{0, 0}, {0, 16.2}, {3.7, 12.8}, {6.1, 18.4}, {8.9, 17.2}, {6.5, 11.8}, {11.6, 11.6}}};

void drawPointer(cairo_t* cairo, Point tip, double scale, double alpha) {
    const CairoState state{cairo};
    cairo_scale(cairo, scale, scale);
    cairo_translate(cairo, tip.x, tip.y);
    cairo_new_path(cairo);
    for (const Point& corner : kPointer) cairo_line_to(cairo, corner.x, corner.y);
    cairo_close_path(cairo);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_width(cairo, 2 * kPointerOutline);
    cairo_set_source_rgba(cairo, 1, 1, 1, alpha);
    cairo_stroke_preserve(cairo);
    cairo_set_source_rgba(cairo, 0, 0, 0, alpha);
    cairo_fill(cairo);
}

// An empty picture is a transparent one. Blends the target with it by this share of the picture.
void paint(cairo_t* cairo, const Pixels& pixels, double share = 1) {
    const CairoState state{cairo};
    const CairoSurface surface = surfaceOver(pixels);
    cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
    if (pixels.isEmpty())
        cairo_set_source_rgba(cairo, 0, 0, 0, 0);
    else
        cairo_set_source_surface(cairo, surface.get(), 0, 0);
    cairo_paint_with_alpha(cairo, share);
}

std::uint32_t* pixelAt(cairo_surface_t* surface, int x, int y) {
    unsigned char* const row = cairo_image_surface_get_data(surface) +
                               std::ptrdiff_t{y} * cairo_image_surface_get_stride(surface);
    return reinterpret_cast<std::uint32_t*>(row) + x;
}

// Copies a part's rows to their place where they differ, from the first such row to the last.
// Returns their area.
PixelRect update(cairo_surface_t* target, const Pixels& pixels, const PixelRect& part) {
    cairo_surface_flush(target);
    const auto shown = [&](int y) { return pixelAt(target, part.x, part.y + y); };
    const auto isChanged = [&](int y) {
        return !std::equal(pixels.row(y), pixels.row(y) + part.width, shown(y));
    };
    int top = 0;
    int bottom = part.height;
    while (top < bottom && !isChanged(top)) ++top;
    while (bottom > top && !isChanged(bottom - 1)) --bottom;
    for (int y = top; y < bottom; ++y) std::copy_n(pixels.row(y), part.width, shown(y));
    const PixelRect rows{part.x, part.y + top, part.width, bottom - top};
    cairo_surface_mark_dirty_rectangle(target, rows.x, rows.y, rows.width, rows.height);
    return rows;
}

}  // namespace

Rect pointerArea(Point tip) {
    return Rect{tip.x, tip.y, kPointer[6].x, kPointer[3].y}.grownBy(kPointerOutline + 1);
}

void CardPainter::setBackdrop(Pixels backdrop) {
    backdrop_ = std::move(backdrop);
    bounds_ = backdrop_.bounds();
    chrome_ = ground_ = moving_ = {};
}

void CardPainter::setClear(int width, int height) {
    setBackdrop({});
    bounds_ = {0, 0, width, height};
}

bool CardPainter::makeChrome() {
    if (!chrome_.isEmpty() || !ground_.isEmpty()) return false;
    chrome_ = backdrop_.isEmpty()
                  ? makeTintedCardChrome(bounds_.width, bounds_.height, style_, scale_)
                  : makeCardChrome(backdrop_, style_, scale_);
    return true;
}

std::vector<PixelRect> CardPainter::pixelsOf(std::span<const Rect> cardAreas) const {
    std::vector<PixelRect> parts;
    for (const Rect& area : cardAreas) {
        const Rect onStage = area.movedBy(style_.shadowMargin, style_.shadowMargin);
        const PixelRect part = pixelsTouchedBy(scaledBy(onStage, scale_)).intersection(bounds_);
        if (!part.isEmpty()) parts.push_back(part);
    }
    return parts;
}

void CardPainter::draw(cairo_surface_t* target, const StageLook& look) {
    part_ = {};
    const CairoContext context{cairo_create(target)};
    // The first frame of an entrance shows no card yet, so it does not wait for the glass.
    if (look.alpha <= 0) return paint(context.get(), backdrop_);
    if (look.transform == Transform::identity()) {
        paint(context.get(), ground());
        drawScene(context.get(), look.scene);
        if (look.alpha < 1) paint(context.get(), backdrop_, 1 - look.alpha);
    } else {
        paint(context.get(), backdrop_);
        drawMoving(context.get(), look);
    }
    if (look.pointer) drawPointer(context.get(), *look.pointer, scale_, look.alpha);
}

std::vector<PixelRect> CardPainter::drawParts(cairo_surface_t* target, const StageLook& look,
                                              std::span<const PixelRect> parts) {
    std::vector<PixelRect> changed;
    for (const PixelRect& part : parts) {
        if (part_.width != part.width || part_.height != part.height)
            part_ = Pixels{part.width, part.height};
        drawPart(surfaceOver(part_).get(), look, part, {});
        const PixelRect rows = update(target, part_, part);
        if (!rows.isEmpty()) changed.push_back(rows);
    }
    return changed;
}

void CardPainter::drawPartsInPlace(cairo_surface_t* target, const StageLook& look,
                                   std::span<const PixelRect> parts) {
    for (const PixelRect& part : parts) drawPart(target, look, part, part);
}

void CardPainter::drawPart(cairo_surface_t* target, const StageLook& look, const PixelRect& part,
                           const PixelRect& place) {
    const Pixels& below = ground();
    cairo_surface_flush(target);
    // Faster than with Cairo.
    for (int y = 0; y < part.height; ++y)
        std::copy_n(below.row(part.y + y) + part.x, part.width,
                    pixelAt(target, place.x, place.y + y));
    cairo_surface_mark_dirty_rectangle(target, place.x, place.y, part.width, part.height);
    const CairoContext context{cairo_create(target)};
    cairo_rectangle(context.get(), place.x, place.y, part.width, part.height);
    cairo_clip(context.get());
    cairo_translate(context.get(), place.x - part.x, place.y - part.y);
    drawScene(context.get(), look.scene);
    if (look.pointer) drawPointer(context.get(), *look.pointer, scale_, look.alpha);
}

void CardPainter::drawMoving(cairo_t* cairo, const StageLook& look) {
    const CairoState state{cairo};
    const CairoSurface surface = surfaceOver(moving(look.scene));
    const Point low = look.transform.apply({0, 0});
    cairo_translate(cairo, low.x * scale_, low.y * scale_);
    cairo_scale(cairo, look.transform.scale, look.transform.scale);
    cairo_set_source_surface(cairo, surface.get(), 0, 0);
    // Interpolate between pixels, also for fractional offsets without scaling.
    cairo_pattern_set_filter(cairo_get_source(cairo), CAIRO_FILTER_BILINEAR);
    cairo_paint_with_alpha(cairo, look.alpha);
}

const Pixels& CardPainter::ground() {
    moving_ = {};
    if (!ground_.isEmpty()) return ground_;
    makeChrome();
    ground_ = std::exchange(chrome_, {});
    if (backdrop_.isEmpty()) return ground_;
    const CairoSurface surface = surfaceOver(ground_);
    const CairoSurface below = surfaceOver(backdrop_);
    const CairoContext context{cairo_create(surface.get())};
    cairo_set_operator(context.get(), CAIRO_OPERATOR_DEST_OVER);
    cairo_set_source_surface(context.get(), below.get(), 0, 0);
    cairo_paint(context.get());
    return ground_;
}

const Pixels& CardPainter::moving(const Scene& scene) {
    if (!moving_.isEmpty()) return moving_;
    ground_ = {};
    makeChrome();
    moving_ = chrome_;
    const CairoSurface surface = surfaceOver(moving_);
    drawScene(CairoContext{cairo_create(surface.get())}.get(), scene);
    return moving_;
}

void CardPainter::drawScene(cairo_t* cairo, const Scene& scene) {
    const CairoState state{cairo};
    cairo_scale(cairo, scale_, scale_);
    cairo_translate(cairo, style_.shadowMargin, style_.shadowMargin);
    canvas_.drawOn(cairo, scene);
}

}  // namespace quorvane

#include "platform/linux/card/CardPainter.hpp"

#include "drawing/pictures/CardChrome.hpp"
#include "platform/linux/card/PointerPicture.hpp"

namespace quorvane {
namespace {

CairoSurface surfaceOver(Pixels& pixels) {
    return CairoSurface{cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(pixels.values.data()), CAIRO_FORMAT_ARGB32, pixels.width,
        pixels.height, pixels.width * kBytesAPixel)};
}

void copyFrom(cairo_t* cairo, cairo_surface_t* source) {
    cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(cairo, source, 0, 0);
    cairo_paint(cairo);
    cairo_set_operator(cairo, CAIRO_OPERATOR_OVER);
}

struct CloseRegion {
    void operator()(cairo_region_t* region) const { cairo_region_destroy(region); }
};
using CairoRegion = std::unique_ptr<cairo_region_t, CloseRegion>;

void addTo(const CairoRegion& region, const PixelRect& part) {
    const cairo_rectangle_int_t rectangle{part.x, part.y, part.width, part.height};
    cairo_region_union_rectangle(region.get(), &rectangle);
}

void clipTo(cairo_t* cairo, const CairoRegion& region) {
    for (int i = 0; i < cairo_region_num_rectangles(region.get()); ++i) {
        cairo_rectangle_int_t part;
        cairo_region_get_rectangle(region.get(), i, &part);
        cairo_rectangle(cairo, part.x, part.y, part.width, part.height);
    }
    cairo_clip(cairo);
}

bool canScroll(const StageLook& look) { return look.isResting() && !look.pointer; }

// The rows and the columns in which the card is opaque from edge to edge; empty if its centre is
// not opaque. The card is convex, so checking the ends of a row or column is enough.
std::array<PixelRect, 2> opaqueCross(const Pixels& chrome) {
    const int middleX = chrome.width / 2;
    const int middleY = chrome.height / 2;
    const auto isOpaque = [&](int x, int y) { return chrome.at(x, y) >= kOpaqueBlack; };
    // Walks from the middle toward the edge; returns the last place for which `holds` is true.
    const auto last = [](int middle, int edge, const auto& holds) {
        const int step = edge < middle ? -1 : 1;
        int place = middle;
        while (place + step != edge && holds(place + step)) place += step;
        return place;
    };
    if (chrome.isEmpty() || !isOpaque(middleX, middleY)) return {};
    const int left = last(middleX, -1, [&](int x) { return isOpaque(x, middleY); });
    const int right = last(middleX, chrome.width, [&](int x) { return isOpaque(x, middleY); });
    const int top = last(middleY, -1, [&](int y) { return isOpaque(middleX, y); });
    const int bottom = last(middleY, chrome.height, [&](int y) { return isOpaque(middleX, y); });
    const auto isRow = [&](int y) { return isOpaque(left, y) && isOpaque(right, y); };
    const auto isColumn = [&](int x) { return isOpaque(x, top) && isOpaque(x, bottom); };
    const int rowsTop = last(middleY, -1, isRow);
    const int columnsLeft = last(middleX, -1, isColumn);
    return {PixelRect{left, rowsTop, right - left + 1,
                      last(middleY, chrome.height, isRow) - rowsTop + 1},
            PixelRect{columnsLeft, top, last(middleX, chrome.width, isColumn) - columnsLeft + 1,
                      bottom - top + 1}};
}

}  // namespace

CardPainter::CardPainter(const CardStyle& style, double scale,
                         std::shared_ptr<PictureCache> pictures)
    : style_(style), scale_(scale), canvas_(scale, std::move(pictures)) {}

void CardPainter::setBackdrop(Pixels backdrop) {
    setClear(backdrop.width, backdrop.height);
    backdrop_ = std::move(backdrop);
    backdropSurface_ = surfaceOver(backdrop_);
}

void CardPainter::setClear(int width, int height) {
    moving_.reset();
    scrolling_.reset();
    backdropSurface_.reset();
    chromeSurface_.reset();
    backdrop_ = {};
    bounds_ = {0, 0, width, height};
}

bool CardPainter::makeChrome() {
    if (chromeSurface_) return false;
    chrome_ = backdropSurface_
                  ? makeCardChrome(backdrop_, style_, scale_)
                  : makeTintedCardChrome(bounds_.width, bounds_.height, style_, scale_);
    chromeSurface_ = surfaceOver(chrome_);
    opaque_ = opaqueCross(chrome_);
    return true;
}

PixelRect CardPainter::pixelsOf(const Rect& cardArea) const {
    return pixelsTouchedBy(
               scaledBy(cardArea.movedBy(style_.shadowMargin, style_.shadowMargin), scale_))
        .intersection(bounds_);
}

void CardPainter::draw(cairo_surface_t* target, const StageLook& look) {
    scrolling_.reset();
    drawLook(CairoContext{cairo_create(target)}.get(), look);
}

std::vector<PixelRect> CardPainter::drawParts(cairo_surface_t* target, const StageLook& look,
                                              std::span<const PixelRect> parts) {
    std::vector<PixelRect> changed;
    for (const PixelRect& part : parts) {
        const auto rows = scrolling_ && canScroll(look) ? scrolling_->draw(target, look.scene, part)
                                                        : std::nullopt;
        if (!rows) drawPart(target, look, part);
        changed.push_back(rows.value_or(part));
    }
    return changed;
}

void CardPainter::drawPart(cairo_surface_t* target, const StageLook& look, const PixelRect& part) {
    Pixels pixels = picture(look, part);
    const CairoContext context{cairo_create(target)};
    cairo_rectangle(context.get(), part.x, part.y, part.width, part.height);
    cairo_clip(context.get());
    cairo_translate(context.get(), part.x, part.y);
    copyFrom(context.get(), surfaceOver(pixels).get());
    // This drawing may have changed rows that the cached part assumes unchanged.
    if (scrolling_ && !scrolling_->part().intersection(part).isEmpty()) scrolling_.reset();
    if (scrolling_ || !canScroll(look)) return;
    scrolling_ = ScrollingRegion::make(
        look.scene, part, {style_.shadowMargin, scale_}, canvas_.texts(),
        [&](const Scene& still) { return picture({.scene = still, .transform = {}}, part); });
}

Pixels CardPainter::picture(const StageLook& look, const PixelRect& part) {
    Pixels pixels{part.width, part.height};
    const CairoSurface surface = surfaceOver(pixels);
    const CairoContext context{cairo_create(surface.get())};
    cairo_translate(context.get(), -part.x, -part.y);
    drawLook(context.get(), look);
    return pixels;
}

void CardPainter::drawLook(cairo_t* cairo, const StageLook& look) {
    if (look.alpha > 0) makeChrome();
    if (look.isResting()) {
        moving_.reset();
        drawGround(cairo);
        drawScene(cairo, look.scene);
    } else {
        drawBackdrop(cairo);
        // The first frame of an entrance shows no card yet, so it does not wait for the glass.
        if (look.alpha > 0) drawMoving(cairo, look);
    }
    if (look.pointer)
        drawPointer(cairo, {look.pointer->x * scale_, look.pointer->y * scale_}, scale_,
                    look.alpha);
}

void CardPainter::drawBackdrop(cairo_t* cairo) const {
    if (backdropSurface_) return copyFrom(cairo, backdropSurface_.get());
    cairo_set_operator(cairo, CAIRO_OPERATOR_CLEAR);
    cairo_paint(cairo);
    cairo_set_operator(cairo, CAIRO_OPERATOR_OVER);
}

// Opaque glass is copied, not blended, and nothing is drawn behind it.
void CardPainter::drawGround(cairo_t* cairo) const {
    const CairoRegion opaque{cairo_region_create()};
    for (const PixelRect& part : opaque_) addTo(opaque, part);
    const CairoRegion clear{cairo_region_create()};
    addTo(clear, bounds_);
    cairo_region_subtract(clear.get(), opaque.get());
    {
        const CairoState state{cairo};
        clipTo(cairo, clear);
        drawBackdrop(cairo);
        cairo_set_source_surface(cairo, chromeSurface_.get(), 0, 0);
        cairo_paint(cairo);
    }
    const CairoState state{cairo};
    clipTo(cairo, opaque);
    copyFrom(cairo, chromeSurface_.get());
}

void CardPainter::drawScene(cairo_t* cairo, const Scene& scene) {
    const CairoState state{cairo};
    cairo_scale(cairo, scale_, scale_);
    cairo_translate(cairo, style_.shadowMargin, style_.shadowMargin);
    canvas_.drawOn(cairo, scene);
}

void CardPainter::drawMoving(cairo_t* cairo, const StageLook& look) {
    if (!moving_) {
        moving_.reset(
            cairo_image_surface_create(CAIRO_FORMAT_ARGB32, bounds_.width, bounds_.height));
        const CairoContext context{cairo_create(moving_.get())};
        copyFrom(context.get(), chromeSurface_.get());
        drawScene(context.get(), look.scene);
    }
    const CairoState state{cairo};
    const Transform& transform = look.transform;
    const Point low = transform.apply({0, 0});
    cairo_translate(cairo, low.x * scale_, low.y * scale_);
    cairo_scale(cairo, transform.scale, transform.scale);
    cairo_set_source_surface(cairo, moving_.get(), 0, 0);
    // Interpolate between pixels, also for fractional offsets without scaling.
    cairo_pattern_set_filter(cairo_get_source(cairo), CAIRO_FILTER_BILINEAR);
    cairo_paint_with_alpha(cairo, look.alpha);
}

}  // namespace quorvane

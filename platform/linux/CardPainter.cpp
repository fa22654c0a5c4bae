#include "platform/linux/CardPainter.hpp"

#include "platform/linux/CardChrome.hpp"
#include "platform/linux/PointerPicture.hpp"

namespace quorvane {
namespace {

CairoSurface surfaceOver(Pixels& pixels) {
    return CairoSurface{cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(pixels.values.data()), CAIRO_FORMAT_ARGB32, pixels.width,
        pixels.height, pixels.width * static_cast<int>(sizeof(std::uint32_t)))};
}

void copyFrom(cairo_t* cairo, cairo_surface_t* source) {
    cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(cairo, source, 0, 0);
    cairo_paint(cairo);
    cairo_set_operator(cairo, CAIRO_OPERATOR_OVER);
}

}  // namespace

CardPainter::CardPainter(const CardStyle& style, double scale,
                         std::shared_ptr<PictureCache> pictures)
    : style_(style), scale_(scale), canvas_(scale, std::move(pictures)) {}

void CardPainter::setBackdrop(Pixels backdrop) {
    moving_.reset();
    backdropSurface_.reset();
    chromeSurface_.reset();
    chrome_ = makeCardChrome(backdrop, style_, scale_);
    backdrop_ = std::move(backdrop);
    backdropSurface_ = surfaceOver(backdrop_);
    chromeSurface_ = surfaceOver(chrome_);
}

PixelRect CardPainter::pixelsOf(const Rect& cardArea) const {
    return pixelsTouchedBy(
               scaledBy(cardArea.movedBy(style_.shadowMargin, style_.shadowMargin), scale_))
        .intersection(backdrop_.bounds());
}

void CardPainter::draw(cairo_surface_t* target, const StageLook& look) {
    drawLook(CairoContext{cairo_create(target)}.get(), look);
}

void CardPainter::drawParts(cairo_surface_t* target, const StageLook& look,
                            std::span<const PixelRect> parts) {
    const CairoContext context{cairo_create(target)};
    cairo_t* cairo = context.get();
    for (const PixelRect& part : parts)
        cairo_rectangle(cairo, part.x, part.y, part.width, part.height);
    cairo_clip(cairo);
    cairo_push_group(cairo);
    drawLook(cairo, look);
    cairo_pop_group_to_source(cairo);
    cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
    cairo_paint(cairo);
}

void CardPainter::drawLook(cairo_t* cairo, const StageLook& look) {
    copyFrom(cairo, backdropSurface_.get());
    if (look.isResting()) {
        moving_.reset();
        drawStage(cairo, look.scene);
    } else {
        drawMoving(cairo, look);
    }
    if (look.pointer)
        drawPointer(cairo, {look.pointer->x * scale_, look.pointer->y * scale_}, scale_,
                    look.alpha);
}

void CardPainter::drawStage(cairo_t* cairo, const Scene& scene) {
    cairo_set_source_surface(cairo, chromeSurface_.get(), 0, 0);
    cairo_paint(cairo);
    const CairoState state{cairo};
    cairo_scale(cairo, scale_, scale_);
    cairo_translate(cairo, style_.shadowMargin, style_.shadowMargin);
    canvas_.drawOn(cairo, scene);
}

void CardPainter::drawMoving(cairo_t* cairo, const StageLook& look) {
    if (!moving_) {
        moving_.reset(
            cairo_image_surface_create(CAIRO_FORMAT_ARGB32, backdrop_.width, backdrop_.height));
        const CairoContext context{cairo_create(moving_.get())};
        drawStage(context.get(), look.scene);
    }
    const CairoState state{cairo};
    const Transform& transform = look.transform;
    const Point low = transform.apply({0, 0});
    cairo_translate(cairo, low.x * scale_, low.y * scale_);
    cairo_scale(cairo, transform.scale, transform.scale);
    cairo_set_source_surface(cairo, moving_.get(), 0, 0);
    // What lies between two pixels is mixed from both, also where nothing is scaled.
    cairo_pattern_set_filter(cairo_get_source(cairo), CAIRO_FILTER_BILINEAR);
    cairo_paint_with_alpha(cairo, look.alpha);
}

}  // namespace quorvane

#include "platform/linux/drawing/Symbols.hpp"

#include <algorithm>
#include <numbers>

namespace quorvane {
namespace {

// Outlines are drawn with y growing downward around the frame's centre; 1 is the point size.
constexpr double kPen = 0.085;    // line width
constexpr double kCorner = 0.06;  // radius that rounds the corners of filled shapes

// Fills the path and rounds its corners outward. Shapes are defined smaller by this radius.
void fillRounded(cairo_t* cairo, double corner = kCorner) {
    cairo_set_line_width(cairo, 2 * corner);
    cairo_fill_preserve(cairo);
    cairo_stroke(cairo);
}

void strokeLine(cairo_t* cairo) {
    cairo_set_line_width(cairo, kPen);
    cairo_stroke(cairo);
}

// Points right from `x`; negative lengths point left.
void triangle(cairo_t* cairo, double x, double length, double halfHeight) {
    cairo_move_to(cairo, x, -halfHeight);
    cairo_line_to(cairo, x + length, 0);
    cairo_line_to(cairo, x, halfHeight);
    cairo_close_path(cairo);
    fillRounded(cairo);
}

void drawPlay(cairo_t* cairo) {
    // Shifted right of the centre, because a triangle's visual weight lies at its base.
    triangle(cairo, -0.25, 0.63, 0.365);
}

void drawPause(cairo_t* cairo) {
    // At 34 points the bars are 7 wide and 6 apart: whole pixels.
    for (const double x : {-0.234, 0.148}) {
        cairo_rectangle(cairo, x, -0.322, 0.086, 0.644);
        fillRounded(cairo);
    }
}

void drawForward(cairo_t* cairo) {
    triangle(cairo, -0.61, 0.52, 0.36);
    triangle(cairo, 0.03, 0.52, 0.36);
}

void drawBackward(cairo_t* cairo) {
    triangle(cairo, 0.61, -0.52, 0.36);
    triangle(cairo, -0.03, -0.52, 0.36);
}

void heartPath(cairo_t* cairo) {
    cairo_move_to(cairo, 0, 0.41);
    cairo_curve_to(cairo, -0.13, 0.34, -0.45, 0.12, -0.45, -0.14);
    cairo_curve_to(cairo, -0.45, -0.29, -0.34, -0.39, -0.22, -0.39);
    cairo_curve_to(cairo, -0.12, -0.39, -0.05, -0.34, 0, -0.25);
    cairo_curve_to(cairo, 0.05, -0.34, 0.12, -0.39, 0.22, -0.39);
    cairo_curve_to(cairo, 0.34, -0.39, 0.45, -0.29, 0.45, -0.14);
    cairo_curve_to(cairo, 0.45, 0.12, 0.13, 0.34, 0, 0.41);
    cairo_close_path(cairo);
}

void drawHeart(cairo_t* cairo) {
    heartPath(cairo);
    strokeLine(cairo);
}

// Filled up to the outer edge of the empty heart's line, so that toggling does not change its size.
void drawFilledHeart(cairo_t* cairo) {
    heartPath(cairo);
    fillRounded(cairo, kPen / 2);
}

void drawNote(cairo_t* cairo) {
    cairo_save(cairo);
    cairo_translate(cairo, -0.13, 0.32);
    cairo_rotate(cairo, -0.35);
    cairo_scale(cairo, 1, 0.76);
    cairo_arc(cairo, 0, 0, 0.21, 0, 2 * std::numbers::pi);
    cairo_restore(cairo);
    cairo_fill(cairo);
    cairo_move_to(cairo, 0.03, 0.28);
    cairo_line_to(cairo, 0.03, -0.44);
    strokeLine(cairo);
    cairo_move_to(cairo, 0.03, -0.44);
    cairo_curve_to(cairo, 0.06, -0.26, 0.38, -0.22, 0.27, 0.07);
    cairo_curve_to(cairo, 0.29, -0.12, 0.14, -0.2, 0.03, -0.28);
    cairo_close_path(cairo);
    fillRounded(cairo, kPen / 4);
}

// The cone's mouth is at x = 0.
void speakerBody(cairo_t* cairo) {
    cairo_move_to(cairo, -0.45, -0.13);
    cairo_line_to(cairo, -0.27, -0.13);
    cairo_line_to(cairo, -0.05, -0.34);
    cairo_line_to(cairo, -0.05, 0.34);
    cairo_line_to(cairo, -0.27, 0.13);
    cairo_line_to(cairo, -0.45, 0.13);
    cairo_close_path(cairo);
    fillRounded(cairo, 0.05);
}

void drawSpeaker(cairo_t* cairo) {
    cairo_translate(cairo, 0.25, 0);
    speakerBody(cairo);
}

void drawLoudSpeaker(cairo_t* cairo) {
    cairo_translate(cairo, -0.13, 0);
    speakerBody(cairo);
    constexpr double kSpread = 0.72;  // radians of each wave, to both sides of straight ahead
    for (const double radius : {0.28, 0.49, 0.7}) {
        cairo_arc(cairo, -0.02, 0, radius, -kSpread, kSpread);
        strokeLine(cairo);
    }
}

struct Symbol {
    std::string_view name;
    void (*draw)(cairo_t*);
};

constexpr Symbol kSymbols[] = {
    {"backward.fill", drawBackward},
    {"forward.fill", drawForward},
    {"heart", drawHeart},
    {"heart.fill", drawFilledHeart},
    {"music.note", drawNote},
    {"pause.fill", drawPause},
    {"play.fill", drawPlay},
    {"speaker.fill", drawSpeaker},
    {"speaker.wave.3.fill", drawLoudSpeaker},
};

constexpr std::size_t kKeptMasks = 12;  // a card has seven, of which two may look different

}  // namespace

void Symbols::draw(cairo_t* cairo, const SymbolNode& node, bool isRightToLeft) {
    cairo_matrix_t place{};
    cairo_get_matrix(cairo, &place);
    const double scale = place.xx;
    const Rect frame = scaledBy(node.frame, scale).movedBy(place.x0, place.y0);
    const PixelRect area = pixelsTouchedBy(frame);
    cairo_surface_t* const mask =
        maskOf({node.name, node.pointSize * scale, frame.movedBy(-area.x, -area.y),
                isRightToLeft && node.facesTextDirection()});
    if (!mask) return;
    const CairoState state{cairo};
    const Color& color = node.color;
    cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha);
    cairo_identity_matrix(cairo);
    cairo_mask_surface(cairo, mask, area.x, area.y);
}

// Fills and lines overlap, so they are combined at full opacity before alpha is applied.
cairo_surface_t* Symbols::maskOf(const Key& key) {
    const auto known = std::ranges::find(recent_, key, &Entry::key);
    if (known != recent_.end()) {
        recent_.splice(recent_.begin(), recent_, known);
        return recent_.front().mask.get();
    }
    const auto symbol = std::ranges::find(kSymbols, key.name, &Symbol::name);
    if (symbol == std::end(kSymbols)) return nullptr;
    const PixelRect area = pixelsTouchedBy(key.frame);
    CairoSurface mask{cairo_image_surface_create(CAIRO_FORMAT_A8, area.width, area.height)};
    const CairoContext cairo{cairo_create(mask.get())};
    cairo_rectangle(cairo.get(), key.frame.x, key.frame.y, key.frame.width, key.frame.height);
    cairo_clip(cairo.get());
    cairo_translate(cairo.get(), key.frame.midX(), key.frame.midY());
    cairo_scale(cairo.get(), key.isMirrored ? -key.pixelSize : key.pixelSize, key.pixelSize);
    cairo_set_line_cap(cairo.get(), CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cairo.get(), CAIRO_LINE_JOIN_ROUND);
    symbol->draw(cairo.get());
    recent_.push_front({key, std::move(mask)});
    if (recent_.size() > kKeptMasks) recent_.pop_back();
    return recent_.front().mask.get();
}

}  // namespace quorvane

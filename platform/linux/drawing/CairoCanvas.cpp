#include "platform/linux/drawing/CairoCanvas.hpp"

#include <pango/pangocairo.h>

#include <cmath>
#include <numbers>

#include "platform/linux/drawing/TextDrawing.hpp"

namespace quorvane {
namespace {

void setColor(cairo_t* cairo, const Color& color) {
    cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha);
}

void roundedPath(cairo_t* cairo, const Rect& rect, double cornerRadius) {
    const double radius = fittingRadius(rect, cornerRadius);
    if (radius <= 0) return cairo_rectangle(cairo, rect.x, rect.y, rect.width, rect.height);
    constexpr double kQuarter = std::numbers::pi / 2;
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, rect.maxX() - radius, rect.y + radius, radius, -kQuarter, 0);
    cairo_arc(cairo, rect.maxX() - radius, rect.maxY() - radius, radius, 0, kQuarter);
    cairo_arc(cairo, rect.x + radius, rect.maxY() - radius, radius, kQuarter, 2 * kQuarter);
    cairo_arc(cairo, rect.x + radius, rect.y + radius, radius, 2 * kQuarter, 3 * kQuarter);
    cairo_close_path(cairo);
}

Rect clipOf(cairo_t* cairo) {
    double left = 0, top = 0, right = 0, bottom = 0;
    cairo_clip_extents(cairo, &left, &top, &right, &bottom);
    return {left, top, right - left, bottom - top};
}

// Draws a scene's nodes, one function per kind.
struct Painter {
    cairo_t* cairo;
    double scale;
    bool isRightToLeft;
    PictureCache& pictures;
    TextLayoutCache& texts;
    Symbols& symbols;
    Rect clip = clipOf(cairo);  // in the coordinates of the nodes that come next
    std::vector<double> groupOpacities{};

    void operator()(const ShapeNode& shape) const {
        if (!clip.intersects(shape.frame)) return;
        const CairoState state{cairo};
        roundedPath(cairo, shape.frame, shape.cornerRadius);
        if (shape.edgeWidth > 0) {
            roundedPath(cairo, shape.frame.grownBy(-shape.edgeWidth),
                        shape.cornerRadius - shape.edgeWidth);
            cairo_set_fill_rule(cairo, CAIRO_FILL_RULE_EVEN_ODD);
        }
        setColor(cairo, shape.fill);
        cairo_fill(cairo);
    }

    void operator()(const SymbolNode& symbol) const {
        if (clip.intersects(symbol.frame)) symbols.draw(cairo, symbol, isRightToLeft);
    }

    void operator()(const TextNode& text) const {
        // A field is higher than most letters, and fields overlap.
        if (clip.intersects(text.frame) && clip.intersects(inkOf(text, scale, texts)))
            drawText(cairo, text, isRightToLeft, texts);
    }

    void operator()(const ImageNode& node) const {
        if (!node.image || !clip.intersects(node.frame)) return;
        const auto pixels = [this](double length) {
            return std::max(1, static_cast<int>(std::lround(length * scale)));
        };
        cairo_surface_t* const picture =
            pictures.picture(node.image, {pixels(node.frame.width), pixels(node.frame.height)});
        if (!picture) return;
        const CairoState state{cairo};
        roundedPath(cairo, node.frame, node.cornerRadius);
        cairo_translate(cairo, node.frame.x, node.frame.y);
        cairo_scale(cairo, node.frame.width / cairo_image_surface_get_width(picture),
                    node.frame.height / cairo_image_surface_get_height(picture));
        cairo_set_source_surface(cairo, picture, 0, 0);
        cairo_pattern_set_extend(cairo_get_source(cairo), CAIRO_EXTEND_PAD);
        cairo_fill(cairo);
    }

    void operator()(const GroupBegin& group) {
        cairo_save(cairo);
        const Transform& t = group.transform;
        cairo_translate(cairo, t.centre.x + t.offset.x, t.centre.y + t.offset.y);
        cairo_scale(cairo, t.scale, t.scale);
        cairo_translate(cairo, -t.centre.x, -t.centre.y);
        if (group.clip) {
            roundedPath(cairo, *group.clip, group.clipCornerRadius);
            cairo_clip(cairo);
        }
        clip = clipOf(cairo);
        groupOpacities.push_back(group.opacity);
        if (group.opacity < 1) cairo_push_group(cairo);
    }

    void operator()(GroupEnd) {
        if (groupOpacities.empty()) return;
        const double opacity = groupOpacities.back();
        groupOpacities.pop_back();
        if (opacity < 1) {
            cairo_pop_group_to_source(cairo);
            cairo_paint_with_alpha(cairo, opacity);
        }
        cairo_restore(cairo);
        clip = clipOf(cairo);
    }
};

}  // namespace

CairoCanvas::CairoCanvas(double scale, std::shared_ptr<PictureCache> pictures,
                         std::string fontFamilies)
    : scale_(scale),
      pictures_(pictures ? std::move(pictures) : std::make_shared<PictureCache>()),
      texts_(std::move(fontFamilies)) {}

Rect CairoCanvas::inkOf(const TextNode& text) { return quorvane::inkOf(text, scale_, texts_); }

void CairoCanvas::drawOn(cairo_t* cairo, const Scene& scene) {
    const CairoState state{cairo};
    Painter painter{cairo, scale_, scene.isRightToLeft, *pictures_, texts_, symbols_};
    for (const SceneNode& node : scene.nodes) std::visit(painter, node);
    while (!painter.groupOpacities.empty()) painter(GroupEnd{});
}

}  // namespace quorvane

#include "platform/linux/drawing/SymbolMasks.hpp"

#include <algorithm>
#include <cmath>

#include "platform/linux/drawing/Symbols.hpp"

namespace quorvane {
namespace {

constexpr std::size_t kKeptMasks = 12;  // a card has seven, of which two may look different

bool isWhole(double value) { return std::abs(value - std::round(value)) < 1e-6; }

}  // namespace

void SymbolMasks::draw(cairo_t* cairo, const SymbolNode& symbol, bool isRightToLeft) {
    const std::optional<double> scale = uprightScale(cairo);
    Point corner{symbol.frame.x, symbol.frame.y};
    cairo_user_to_device(cairo, &corner.x, &corner.y);
    if (!scale || !isWhole(corner.x) || !isWhole(corner.y)) {
        drawSymbol(cairo, symbol, isRightToLeft);
        return;
    }
    cairo_surface_t* const mask = maskOf({symbol.name,
                                          symbol.pointSize,
                                          {symbol.frame.width, symbol.frame.height},
                                          *scale,
                                          isRightToLeft});
    const CairoState state{cairo};
    const Color& color = symbol.color;
    cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha);
    cairo_identity_matrix(cairo);
    cairo_mask_surface(cairo, mask, std::round(corner.x), std::round(corner.y));
}

cairo_surface_t* SymbolMasks::maskOf(const Key& key) {
    const auto found = std::ranges::find(recent_, key, &Entry::key);
    if (found != recent_.end()) {
        recent_.splice(recent_.begin(), recent_, found);
        return recent_.front().mask.get();
    }
    const auto pixels = [&](double length) {
        return static_cast<int>(std::ceil(length * key.scale));
    };
    CairoSurface mask{cairo_image_surface_create(CAIRO_FORMAT_A8, pixels(key.frame.width),
                                                 pixels(key.frame.height))};
    const CairoContext cairo{cairo_create(mask.get())};
    cairo_scale(cairo.get(), key.scale, key.scale);
    drawSymbol(cairo.get(),
               {{0, 0, key.frame.width, key.frame.height}, key.name, key.pointSize, Color::white()},
               key.isRightToLeft);
    recent_.push_front({key, std::move(mask)});
    if (recent_.size() > kKeptMasks) recent_.pop_back();
    return recent_.front().mask.get();
}

}  // namespace quorvane

// Scenes drawn to memory, whose pixels tests can check, and pictures to draw.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "drawing/pictures/EncodedImage.hpp"
#include "platform/linux/drawing/CairoCanvas.hpp"

namespace quorvane {

// Pixels as Cairo holds them: 0xAARRGGBB, colours multiplied by alpha.
class DrawnScene {
public:
    DrawnScene(CairoCanvas& canvas, const Scene& scene, Size size, double scale = 1)
        : scale_(scale),
          pixels_(static_cast<int>(std::lround(size.width * scale)),
                  static_cast<int>(std::lround(size.height * scale))) {
        const CairoSurface surface = surfaceOver(pixels_);
        const CairoContext cairo{cairo_create(surface.get())};
        cairo_scale(cairo.get(), scale, scale);
        canvas.drawOn(cairo.get(), scene);
    }

    std::uint32_t at(int x, int y) const { return pixels_.at(x, y); }
    // The pixel at a place in points.
    std::uint32_t at(Point point) const {
        return at(static_cast<int>(point.x * scale_), static_cast<int>(point.y * scale_));
    }
    int alphaAt(int x, int y) const { return static_cast<int>(at(x, y) >> 24); }

    // The bounds of all pixels that are not clear, in points; empty when all are.
    Rect ink() const {
        int left = width(), top = height(), right = 0, bottom = 0;
        for (int y = 0; y < height(); ++y)
            for (int x = 0; x < width(); ++x) {
                if (alphaAt(x, y) == 0) continue;
                left = std::min(left, x), right = std::max(right, x + 1);
                top = std::min(top, y), bottom = std::max(bottom, y + 1);
            }
        if (right <= left) return {};
        return {left / scale_, top / scale_, (right - left) / scale_, (bottom - top) / scale_};
    }
    int width() const { return pixels_.width; }
    int height() const { return pixels_.height; }
    bool operator==(const DrawnScene&) const = default;

private:
    double scale_;
    Pixels pixels_;
};

inline Bytes encoded(cairo_surface_t* surface) {
    Bytes bytes;
    cairo_surface_write_to_png_stream(
        surface,
        [](void* target, const unsigned char* data, unsigned int length) {
            const auto more = std::as_bytes(std::span{data, length});
            auto& all = *static_cast<Bytes*>(target);
            all.insert(all.end(), more.begin(), more.end());
            return CAIRO_STATUS_SUCCESS;
        },
        &bytes);
    return bytes;
}

// A PNG of columns in these colours, all of the same width.
inline Bytes stripes(int width, int height, std::initializer_list<Color> colors) {
    const CairoSurface surface{cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height)};
    const CairoContext cairo{cairo_create(surface.get())};
    const double step = static_cast<double>(width) / static_cast<double>(colors.size());
    double x = 0;
    for (const Color& color : colors) {
        cairo_set_source_rgba(cairo.get(), color.red, color.green, color.blue, color.alpha);
        cairo_rectangle(cairo.get(), x, 0, step, height);
        cairo_fill(cairo.get());
        x += step;
    }
    return encoded(surface.get());
}

}  // namespace quorvane

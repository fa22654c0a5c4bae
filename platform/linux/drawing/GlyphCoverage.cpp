#include "platform/linux/drawing/GlyphCoverage.hpp"

#include <pango/pangocairo.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "platform/linux/drawing/ShapedRuns.hpp"

namespace quorvane {
namespace {

constexpr int kPlacesAPixel = 4;  // positions per pixel for a letter
constexpr double kWidest = 8000;  // pixels; Cairo's surfaces end at about four times as many

// The ink area of the letters, from the line's left edge and baseline. Its width is whole blocks.
PixelRect inkOf(const TextLine& line, double scale) {
    PangoRectangle ink{};
    pango_layout_line_get_extents(pango_layout_get_line_readonly(line.layout.get(), 0), &ink,
                                  nullptr);
    if (ink.width <= 0 || ink.height <= 0) return {};
    const double pixels = scale / PANGO_SCALE;
    // One pixel more on every side, because letter positions and Pango's extents are rounded.
    PixelRect rect = pixelsTouchedBy(
        Rect{ink.x * pixels, ink.y * pixels, ink.width * pixels, ink.height * pixels}.grownBy(1));
    rect.width = (rect.width + kMixedAtOnce - 1) / kMixedAtOnce * kMixedAtOnce;
    return rect;
}

// Cairo's cached letter pictures are many times faster than filling outlines, but Cairo places them
// on whole pixels only. So this surface is drawn several times as wide.
CairoSurface drawnWide(const TextLine& line, double scale, const PixelRect& ink) {
    CairoSurface surface{
        cairo_image_surface_create(CAIRO_FORMAT_A8, ink.width * kPlacesAPixel, ink.height)};
    const CairoContext cairo{cairo_create(surface.get())};
    cairo_translate(cairo.get(), -ink.x * kPlacesAPixel, -ink.y);
    cairo_scale(cairo.get(), scale * kPlacesAPixel, scale);
    pango_cairo_show_layout_line(cairo.get(), pango_layout_get_line_readonly(line.layout.get(), 0));
    cairo_surface_flush(surface.get());
    return surface;
}

// The following loops have a fixed length and work on single bytes, so that the compiler can
// vectorise them.
void copyMeans(const unsigned char* wide, std::uint8_t* narrow, int width) {
    std::array<std::uint32_t, kMixedAtOnce> pixels;
    static_assert(sizeof pixels == kPlacesAPixel * kMixedAtOnce);
    for (int x = 0; x < width; x += kMixedAtOnce) {
        std::memcpy(pixels.data(), wide + std::ptrdiff_t{x} * kPlacesAPixel, sizeof pixels);
        for (std::size_t i = 0; i < kMixedAtOnce; ++i) {
            const std::uint32_t pairs = (pixels[i] & 0xff00ff) + (pixels[i] >> 8 & 0xff00ff);
            narrow[static_cast<std::size_t>(x) + i] =
                static_cast<std::uint8_t>((pairs + (pairs >> 16) + 2) >> 2);
        }
    }
}

using Block = std::array<std::uint8_t, 4 * kMixedAtOnce>;

bool isEmpty(const std::uint8_t* coverage) {
    std::array<std::uint64_t, kMixedAtOnce / 8> words;
    std::memcpy(words.data(), coverage, kMixedAtOnce);
    return std::ranges::all_of(words, [](std::uint64_t word) { return word == 0; });
}

// The weight of the colour in each byte of the pixels, 0 to 255.
Block weightsOf(const std::uint8_t* coverage, const std::uint16_t* strengths) {
    std::array<std::uint32_t, kMixedAtOnce> weights;
    for (std::size_t i = 0; i < kMixedAtOnce; ++i) {
        const auto weight = static_cast<std::uint16_t>(coverage[i] * strengths[i] >> 8);
        weights[i] = static_cast<std::uint32_t>(weight | weight << 8);
        weights[i] |= weights[i] << 16;
    }
    Block block;
    std::memcpy(block.data(), weights.data(), block.size());
    return block;
}

void mix(std::uint32_t* pixels, const Block& weights, const Block& color) {
    Block block;
    std::memcpy(block.data(), pixels, block.size());
    for (std::size_t i = 0; i < block.size(); ++i) {
        const auto left = static_cast<std::uint8_t>(~weights[i]);
        const auto sum = static_cast<std::uint16_t>(block[i] * left + color[i] * weights[i] + 128);
        block[i] = static_cast<std::uint8_t>(static_cast<std::uint16_t>(sum + (sum >> 8)) >> 8);
    }
    std::memcpy(pixels, block.data(), block.size());
}

}  // namespace

std::shared_ptr<const GlyphCoverage> GlyphCoverage::of(const TextLine& line, double scale) {
    if (!line.coverage || line.coverage->scale_ != scale) line.coverage = make(line, scale);
    return line.coverage;
}

std::shared_ptr<const GlyphCoverage> GlyphCoverage::make(const TextLine& line, double scale) {
    const PixelRect ink = inkOf(line, scale);
    if (ink.isEmpty() || ink.width > kWidest || hasColors(line)) return nullptr;
    const CairoSurface wide = drawnWide(line, scale, ink);
    const unsigned char* const data = cairo_image_surface_get_data(wide.get());
    if (!data) return nullptr;
    std::shared_ptr<GlyphCoverage> made{new GlyphCoverage{scale, ink}};
    for (int y = 0; y < ink.height; ++y)
        copyMeans(data + std::ptrdiff_t{y} * cairo_image_surface_get_stride(wide.get()),
                  made->row(y), ink.width);
    return made;
}

GlyphCoverage::GlyphCoverage(double scale, const PixelRect& ink)
    : scale_(scale),
      ink_(ink),
      stride_(ink.width + kMixedAtOnce),
      values_(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(ink.height)) {}

void GlyphCoverage::show(cairo_t* cairo, int x, int y) const {
    const CairoSurface mask{
        cairo_image_surface_create_for_data(const_cast<std::uint8_t*>(values_.data()),
                                            CAIRO_FORMAT_A8, ink_.width, ink_.height, stride_)};
    cairo_mask_surface(cairo, mask.get(), x + ink_.x, y + ink_.y);
}

void GlyphCoverage::mixInto(std::span<std::uint32_t> pixels,
                            std::span<const std::uint16_t> strengths, std::uint32_t color, int x,
                            int y) const {
    if (y < top() || y >= bottom()) return;
    const std::uint8_t* const letters = row(y - top());
    std::array<std::uint32_t, kMixedAtOnce> colors;
    colors.fill(color);
    Block colorBlock;
    std::memcpy(colorBlock.data(), colors.data(), colorBlock.size());
    const int left = x + ink_.x;
    const int begin = std::max(0, left);
    const int end = std::min(static_cast<int>(pixels.size()) - kMixedAtOnce, left + ink_.width);
    for (int i = begin; i < end; i += kMixedAtOnce) {
        const std::uint8_t* const coverage = letters + (i - left);
        if (!isEmpty(coverage))
            mix(&pixels[static_cast<std::size_t>(i)],
                weightsOf(coverage, &strengths[static_cast<std::size_t>(i)]), colorBlock);
    }
}

}  // namespace quorvane

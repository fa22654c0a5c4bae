#include "platform/linux/LineCoverage.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "platform/linux/TextRuns.hpp"

namespace quorvane {
namespace {

constexpr double kRoom = 8;       // points around the line, for what reaches out of it
constexpr double kWidest = 8192;  // pixels

CairoSurface drawn(const TextLine& line, double scale, int room, int baseline) {
    const auto pixels = [&](double length) { return static_cast<int>(std::ceil(length * scale)); };
    CairoSurface surface{
        cairo_image_surface_create(CAIRO_FORMAT_A8, pixels(line.width) + 2 * room,
                                   baseline + pixels(line.heights.descent) + room)};
    const CairoContext cairo{cairo_create(surface.get())};
    cairo_translate(cairo.get(), room, baseline);
    cairo_scale(cairo.get(), scale, scale);
    fillLine(cairo.get(), line, {});
    cairo_surface_flush(surface.get());
    return surface;
}

// What follows is made for the compiler: loops of a fixed length over single bytes, which it turns
// into a few instructions for many of them.
using Block = std::array<std::uint8_t, 4 * kMixedAtOnce>;

bool isEmpty(const std::uint8_t* coverage) {
    std::array<std::uint64_t, kMixedAtOnce / 8> words;
    std::memcpy(words.data(), coverage, kMixedAtOnce);
    return std::ranges::all_of(words, [](std::uint64_t word) { return word == 0; });
}

// How much of the colour comes into each byte of the pixels, 0 to 255.
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

std::optional<LineCoverage> LineCoverage::make(const TextLine& line, double scale) {
    if (hasColors(line) || line.width * scale > kWidest) return std::nullopt;
    const int room = std::max(kMixedAtOnce, static_cast<int>(std::lround(kRoom * scale)));
    const int baseline = room + static_cast<int>(std::ceil(line.heights.ascent * scale));
    const CairoSurface surface = drawn(line, scale, room, baseline);
    const unsigned char* const data = cairo_image_surface_get_data(surface.get());
    if (!data) return std::nullopt;
    const int stride = cairo_image_surface_get_stride(surface.get());
    const int height = cairo_image_surface_get_height(surface.get());
    const auto hasInk = [&](int y) {
        const auto* const row = data + static_cast<std::ptrdiff_t>(y) * stride;
        return std::any_of(row, row + stride, [](unsigned char value) { return value != 0; });
    };
    int top = 0;
    int bottom = height;
    while (top < bottom && !hasInk(top)) ++top;
    while (top < bottom && !hasInk(bottom - 1)) --bottom;
    if (top == bottom) return std::nullopt;

    LineCoverage coverage;
    coverage.top_ = top - baseline;
    coverage.rows_ = bottom - top;
    coverage.left_ = room;
    coverage.columns_ = cairo_image_surface_get_width(surface.get());
    const int length = coverage.columns_ + kMixedAtOnce;
    coverage.values_.resize(static_cast<std::size_t>(length) *
                            static_cast<std::size_t>(coverage.rows_));
    for (int y = top; y < bottom; ++y)
        std::copy_n(data + static_cast<std::ptrdiff_t>(y) * stride, coverage.columns_,
                    coverage.values_.data() + static_cast<std::ptrdiff_t>(y - top) * length);
    return coverage;
}

void LineCoverage::mixInto(std::span<std::uint32_t> pixels,
                           std::span<const std::uint16_t> strengths, std::uint32_t color, int x,
                           int y) const {
    if (y < top_ || y >= top_ + rows_) return;
    const std::uint8_t* const row =
        values_.data() + static_cast<std::ptrdiff_t>(y - top_) * (columns_ + kMixedAtOnce);
    std::array<std::uint32_t, kMixedAtOnce> colors;
    colors.fill(color);
    Block colorBlock;
    std::memcpy(colorBlock.data(), colors.data(), colorBlock.size());
    const int begin = std::max(0, x - left_);
    const int end = std::min(static_cast<int>(pixels.size()) - kMixedAtOnce, x - left_ + columns_);
    for (int i = begin; i < end; i += kMixedAtOnce) {
        const std::uint8_t* const coverage = row + (i - x + left_);
        if (!isEmpty(coverage))
            mix(&pixels[static_cast<std::size_t>(i)],
                weightsOf(coverage, &strengths[static_cast<std::size_t>(i)]), colorBlock);
    }
}

}  // namespace quorvane

#include "drawing/pictures/GlassPicture.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "drawing/pictures/Pixels.hpp"

namespace quorvane {
namespace {

// Shades as fixed-point numbers, which are rounded down by one shift.
constexpr int kShadeBits = 16;
constexpr float kShadeUnit = 1 << kShadeBits;

constexpr int kGrainSize = 64;  // a power of two

// Noise evenly distributed below one shade, the same for the same place. Its repetition is
// invisible because it is at most one shade.
struct Grain {
    std::array<std::array<std::uint32_t, kGrainSize>, kGrainSize> rows{};

    Grain() {
        for (std::size_t y = 0; y < rows.size(); ++y)
            for (std::size_t x = 0; x < rows.size(); ++x) rows[y][x] = at(x, y);
    }

private:
    static std::uint32_t at(std::size_t x, std::size_t y) {
        std::uint32_t bits = static_cast<std::uint32_t>(x) * 0x9e3779b1U ^
                             static_cast<std::uint32_t>(y) * 0x85ebca77U;
        bits ^= bits >> 15;
        bits *= 0x2c1b3c6dU;
        bits ^= bits >> 13;
        return bits >> (32 - kShadeBits);
    }
};

// The shades of one line, interpolated at this height. The first and the last are repeated, because
// beyond their centres the shade is constant.
std::vector<std::uint32_t> shadesAt(const Plane& plane, float height) {
    std::vector<float> line;
    plane.readLine(height, line);
    line.insert(line.begin(), line.front());
    std::vector<std::uint32_t> shades(line.size());
    std::ranges::transform(line, shades.begin(), [](float value) {
        return static_cast<std::uint32_t>(value * 255 * kShadeUnit);
    });
    return shades;
}

// Interpolates from one value to the next, pixel by pixel.
class Ramp {
public:
    // Starts `halves` half pixels after the value; `halvesAValue` is the distance between two
    // values.
    Ramp(const std::vector<std::uint32_t>& shades, int value, int halves, int halvesAValue) {
        const std::uint32_t* const from = &shades[static_cast<std::size_t>(value)];
        const int rise = (static_cast<int>(from[1]) - static_cast<int>(from[0])) / halvesAValue;
        shade_ = static_cast<int>(from[0]) + rise * halves;
        pixelRise_ = 2 * rise;
    }
    std::uint32_t next(std::uint32_t grain) {
        const auto shade = (static_cast<std::uint32_t>(shade_) + grain) >> kShadeBits;
        shade_ += pixelRise_;
        return shade;
    }

private:
    int shade_;
    int pixelRise_;
};

}  // namespace

void GlassPicture::readRow(int y, int begin, int end, std::uint32_t* pixels) const {
    static const Grain grain;
    const auto& grains = grain.rows[static_cast<std::size_t>(y) % kGrainSize];
    const float height = (static_cast<float>(y) + 0.5F) / static_cast<float>(step) - 0.5F;
    const auto reds = shadesAt(red, height);
    const auto greens = shadesAt(green, height);
    const auto blues = shadesAt(blue, height);
    // A value lies at the centre of its pixels, so positions are counted in half pixels, which are
    // integers.
    const int halvesAValue = 2 * step;
    for (int x = begin; x < end;) {
        const int place = 2 * x + 1 + step;
        const int value = place / halvesAValue;
        int halves = place % halvesAValue;
        Ramp redRamp{reds, value, halves, halvesAValue};
        Ramp greenRamp{greens, value, halves, halvesAValue};
        Ramp blueRamp{blues, value, halves, halvesAValue};
        for (; halves < halvesAValue && x < end; halves += 2, ++x) {
            const std::uint32_t noise = grains[static_cast<std::size_t>(x) % kGrainSize];
            *pixels++ = kOpaqueBlack | redRamp.next(noise) << 16 | greenRamp.next(noise) << 8 |
                        blueRamp.next(noise);
        }
    }
}

}  // namespace quorvane

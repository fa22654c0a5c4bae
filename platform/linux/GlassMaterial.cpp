#include "platform/linux/GlassMaterial.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace quorvane {
namespace {

constexpr double kPointsAValue = 4;
constexpr double kBlurDeviation = 22;  // points
constexpr float kSaturation = 1.2F;
// Contrast 7 for plain white leaves text of less than full opacity readable too.
constexpr float kBrightest = 1.05F / 7 - 0.05F;
constexpr float kDimming = 0.62F;  // of what is dark enough already
constexpr float kVeil = 0.011F;    // keeps the card apart from a black screen
constexpr float kSheen = 0.018F;   // light from above, fading toward the middle
constexpr float kSheenReach = 0.6F;

constexpr float kRedShare = 0.2126F;
constexpr float kGreenShare = 0.7152F;
constexpr float kBlueShare = 0.0722F;

double linearFromEncoded(double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

float encodedFromLinear(float value) {
    return value <= 0.0031308F ? value * 12.92F : 1.055F * std::pow(value, 1 / 2.4F) - 0.055F;
}

const std::array<float, 256>& linearValues() {
    static const auto table = [] {
        std::array<float, 256> values{};
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = static_cast<float>(linearFromEncoded(static_cast<double>(i) / 255));
        return values;
    }();
    return table;
}

float luminance(float red, float green, float blue) {
    return kRedShare * red + kGreenShare * green + kBlueShare * blue;
}

// The mean light of each square of `step` pixels. Light adds up; the encoded shades do not.
GlassPicture reduced(const Pixels& picture, int step) {
    const int width = (picture.width + step - 1) / step;
    const int height = (picture.height + step - 1) / step;
    GlassPicture result{step, Plane{width, height}, Plane{width, height}, Plane{width, height}};
    const auto& linear = linearValues();
    for (int y = 0; y < picture.height; ++y) {
        float* red = &result.red.at(0, y / step);
        float* green = &result.green.at(0, y / step);
        float* blue = &result.blue.at(0, y / step);
        const std::uint32_t* row = picture.row(y);
        for (int x = 0; x < picture.width; ++red, ++green, ++blue)
            for (const int end = std::min(x + step, picture.width); x < end; ++x) {
                *red += linear[row[x] >> 16 & 0xff];
                *green += linear[row[x] >> 8 & 0xff];
                *blue += linear[row[x] & 0xff];
            }
    }
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int columns = std::min(step, picture.width - x * step);
            const int rows = std::min(step, picture.height - y * step);
            const float share = 1.0F / static_cast<float>(columns * rows);
            for (Plane* plane : {&result.red, &result.green, &result.blue})
                plane->at(x, y) *= share;
        }
    return result;
}

// Spreads the colours away from grey of the same brightness; dimmed colours look dull otherwise.
void saturate(GlassPicture& glass) {
    for (std::size_t i = 0; i < glass.red.values.size(); ++i) {
        float& red = glass.red.values[i];
        float& green = glass.green.values[i];
        float& blue = glass.blue.values[i];
        const float grey = luminance(red, green, blue);
        for (float* channel : {&red, &green, &blue})
            *channel = std::max(0.0F, grey + (*channel - grey) * kSaturation);
    }
}

float brightest(const GlassPicture& glass, const PixelRect& card) {
    const PixelRect values = pixelsTouchedBy({static_cast<double>(card.x) / glass.step - 1,
                                              static_cast<double>(card.y) / glass.step - 1,
                                              static_cast<double>(card.width) / glass.step + 2,
                                              static_cast<double>(card.height) / glass.step + 2});
    const PixelRect area = values.intersection({0, 0, glass.red.width, glass.red.height});
    float most = 0;
    for (int y = area.y; y < area.maxY(); ++y)
        for (int x = area.x; x < area.maxX(); ++x)
            most = std::max(
                most, luminance(glass.red.at(x, y), glass.green.at(x, y), glass.blue.at(x, y)));
    return most;
}

float sheen(int y, const PixelRect& card, int step) {
    const float depth = (static_cast<float>(y * step) - static_cast<float>(card.y)) /
                        (static_cast<float>(std::max(card.height, 1)) * kSheenReach);
    const float left = std::clamp(1 - depth, 0.0F, 1.0F);
    return kSheen * left * left;
}

// Dims, adds veil and sheen, and encodes for the screen. All of it is linear in the light until the
// encoding, so the brightest value decides for all.
void tone(GlassPicture& glass, const PixelRect& card) {
    const float room = kBrightest - kVeil - kSheen;
    const float most = brightest(glass, card);
    const float dimming = most * kDimming <= room ? kDimming : room / most;
    for (int y = 0; y < glass.red.height; ++y) {
        const float added = kVeil + sheen(y, card, glass.step);
        for (int x = 0; x < glass.red.width; ++x)
            for (Plane* plane : {&glass.red, &glass.green, &glass.blue})
                plane->at(x, y) =
                    encodedFromLinear(std::min(1.0F, plane->at(x, y) * dimming + added));
    }
}

// Evenly spread between 0 and 1, the same for the same place.
float grain(int x, int y) {
    std::uint32_t bits =
        static_cast<std::uint32_t>(x) * 0x9e3779b1U ^ static_cast<std::uint32_t>(y) * 0x85ebca77U;
    bits ^= bits >> 15;
    bits *= 0x2c1b3c6dU;
    bits ^= bits >> 13;
    return static_cast<float>(bits >> 8) / static_cast<float>(1U << 24);
}

}  // namespace

double relativeLuminance(std::uint32_t pixel) {
    const auto& linear = linearValues();
    return luminance(linear[pixel >> 16 & 0xff], linear[pixel >> 8 & 0xff], linear[pixel & 0xff]);
}

double contrastWithWhite(std::uint32_t pixel) { return 1.05 / (relativeLuminance(pixel) + 0.05); }

void GlassPicture::readRow(int y, int begin, int end, std::uint32_t* pixels) const {
    const auto place = [&](int pixel) {
        return (static_cast<float>(pixel) + 0.5F) / static_cast<float>(step) - 0.5F;
    };
    std::vector<float> reds;
    std::vector<float> greens;
    std::vector<float> blues;
    red.readLine(place(y), reds);
    green.readLine(place(y), greens);
    blue.readLine(place(y), blues);
    for (int x = begin; x < end; ++x) {
        const float column = place(x);
        const float noise = grain(x, y);
        const auto shade = [&](const std::vector<float>& line) {
            return static_cast<std::uint32_t>(
                std::clamp(sampled(line, column) * 255 + noise, 0.0F, 255.0F));
        };
        *pixels++ = kOpaqueBlack | shade(reds) << 16 | shade(greens) << 8 | shade(blues);
    }
}

GlassPicture makeGlass(const Pixels& backdrop, const PixelRect& card, double scale) {
    const int step = std::max(1, static_cast<int>(std::lround(kPointsAValue * scale)));
    GlassPicture glass = reduced(backdrop, step);
    for (Plane* plane : {&glass.red, &glass.green, &glass.blue})
        blur(*plane, kBlurDeviation * scale / step);
    saturate(glass);
    tone(glass, card);
    return glass;
}

}  // namespace quorvane

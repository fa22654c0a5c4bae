#include "platform/linux/GlassMaterial.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace quorvane {
namespace {

constexpr double kPointsAValue = 4;
constexpr double kBlurDeviation = 22;  // points
constexpr float kSaturation = 1.45F;
// The quietest text on the card is white of this opacity; it has to be readable, 4.5 and a little
// for what lies between the values that are looked at.
constexpr float kTextOpacity = 0.58F;
constexpr float kLeastContrast = 4.6F;
constexpr float kDimming = 0.62F;  // of what is dark enough already
constexpr float kHighestScale = 4;
constexpr float kVeil = 0.011F;   // keeps the card apart from a black screen
constexpr float kSheen = 0.018F;  // light from above, fading toward the middle
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

// Adds the light of a row's pixels from `x` up to `end` to the sums. Every pixel of the backdrop
// comes by here, so sums run in whole numbers, which add up faster.
void addUp(const std::uint32_t* row, int& x, int end, float& red, float& green, float& blue) {
    constexpr float kUnit = 1 << 20;
    static const auto units = [] {
        std::array<std::uint32_t, 256> values{};
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = static_cast<std::uint32_t>(std::lround(linearValues()[i] * kUnit));
        return values;
    }();
    std::uint64_t reds = 0;
    std::uint64_t greens = 0;
    std::uint64_t blues = 0;
    for (; x < end; ++x) {
        reds += units[row[x] >> 16 & 0xff];
        greens += units[row[x] >> 8 & 0xff];
        blues += units[row[x] & 0xff];
    }
    red += static_cast<float>(reds) / kUnit;
    green += static_cast<float>(greens) / kUnit;
    blue += static_cast<float>(blues) / kUnit;
}

// The mean light of each square of `step` pixels. Light adds up; the encoded shades do not.
GlassPicture reduced(const Pixels& picture, int step) {
    const int width = (picture.width + step - 1) / step;
    const int height = (picture.height + step - 1) / step;
    GlassPicture result{step, Plane{width, height}, Plane{width, height}, Plane{width, height}};
    for (int y = 0; y < picture.height; ++y) {
        float* red = &result.red.at(0, y / step);
        float* green = &result.green.at(0, y / step);
        float* blue = &result.blue.at(0, y / step);
        const std::uint32_t* row = picture.row(y);
        for (int x = 0; x < picture.width; ++red, ++green, ++blue)
            addUp(row, x, std::min(x + step, picture.width), *red, *green, *blue);
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

float sheen(int y, const PixelRect& card, int step) {
    const float depth = (static_cast<float>(y * step) - static_cast<float>(card.y)) /
                        (static_cast<float>(std::max(card.height, 1)) * kSheenReach);
    const float left = std::clamp(1 - depth, 0.0F, 1.0F);
    return kSheen * left * left;
}

// The light of the quietest text on a channel of this light.
float textLight(float light) {
    constexpr std::size_t kSteps = 4096;
    static const auto table = [] {
        std::array<float, kSteps + 1> values{};
        for (std::size_t i = 0; i < values.size(); ++i) {
            const float shade = encodedFromLinear(static_cast<float>(i) / kSteps);
            values[i] = static_cast<float>(linearFromEncoded(shade + (1 - shade) * kTextOpacity));
        }
        return values;
    }();
    return table[static_cast<std::size_t>(std::min(light, 1.0F) * kSteps)];
}

struct Light {
    float red, green, blue;

    Light scaled(float scale, float added) const {
        return {red * scale + added, green * scale + added, blue * scale + added};
    }
    bool isReadable() const {
        const float text = luminance(textLight(red), textLight(green), textLight(blue));
        return text + 0.05F >= kLeastContrast * (luminance(red, green, blue) + 0.05F);
    }
};

// How much of the light stays. What is bright is pressed together below what the text bears, what
// is dark keeps its share: a sun behind the card takes nothing from the sky around it. Less light
// is always more readable.
float scaleFor(const Light& light) {
    constexpr float kAdded = kVeil + kSheen;  // everywhere, so that the sheen stays to be seen
    float readable = 0;
    float tooBright = kHighestScale;
    if (light.scaled(tooBright, kAdded).isReadable()) readable = tooBright;
    for (int i = 0; i < 12 && readable < tooBright; ++i) {
        const float middle = (readable + tooBright) / 2;
        (light.scaled(middle, kAdded).isReadable() ? readable : tooBright) = middle;
    }
    return readable > 0 ? readable * (1 - std::exp(-kDimming / readable)) : 0;
}

// Dims, adds veil and sheen, and encodes for the screen.
void tone(GlassPicture& glass, const PixelRect& card) {
    for (int y = 0; y < glass.red.height; ++y) {
        const float added = kVeil + sheen(y, card, glass.step);
        for (int x = 0; x < glass.red.width; ++x) {
            const Light light{glass.red.at(x, y), glass.green.at(x, y), glass.blue.at(x, y)};
            const Light toned = light.scaled(scaleFor(light), added);
            glass.red.at(x, y) = encodedFromLinear(std::min(1.0F, toned.red));
            glass.green.at(x, y) = encodedFromLinear(std::min(1.0F, toned.green));
            glass.blue.at(x, y) = encodedFromLinear(std::min(1.0F, toned.blue));
        }
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

double contrastWithWhite(std::uint32_t pixel, double opacity) {
    std::uint32_t text = 0;
    for (const int shift : {16, 8, 0}) {
        const double shade = pixel >> shift & 0xff;
        text |= static_cast<std::uint32_t>(std::lround(shade + (255 - shade) * opacity)) << shift;
    }
    return (relativeLuminance(text) + 0.05) / (relativeLuminance(pixel) + 0.05);
}

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
    // As `sampled`, but the place is found once for the three colours.
    const auto last = static_cast<float>(red.width - 1);
    for (int x = begin; x < end; ++x) {
        const float column = std::clamp(place(x), 0.0F, last);
        const int left = static_cast<int>(column);
        const float share = column - static_cast<float>(left);
        const float noise = grain(x, y);
        const auto shade = [&](const std::vector<float>& line) {
            const float* const at = line.data() + left;
            const float value = (at[0] + (at[1] - at[0]) * share) * 255 + noise;
            return static_cast<std::uint32_t>(static_cast<int>(std::clamp(value, 0.0F, 255.0F)));
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

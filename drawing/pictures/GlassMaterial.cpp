#include "drawing/pictures/GlassMaterial.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace quorvane {
namespace {

constexpr double kPointsPerValue = 4;
constexpr double kBlurDeviation = 22;  // points
// The increase of saturation, and the extra increase in bright places, because dimming dulls
// colours.
constexpr float kSpread = 0.35F;
constexpr float kBrightSpread = 3.5F;
constexpr float kHalfBright = 0.35F;  // luminance at which half of that is added
// The faintest text on the card is white of this opacity. Its contrast must be 4.5; the extra
// allows for pixels interpolated between the checked values.
constexpr float kTextOpacity = 0.58F;
constexpr float kTextContrast = 4.6F;
// The same text's contrast at the card's bottom. The volume's fill then has 3.5, plain white more.
constexpr float kSymbolContrast = 2.5F;
constexpr double kTransition = 96;  // points between the two contrasts
constexpr float kDimming = 0.62F;   // for light that is dark enough already
constexpr float kHighestScale = 4;
constexpr float kVeil = 0.011F;   // separates the card from a black screen
constexpr float kSheen = 0.018F;  // light from above, fading toward the middle
constexpr float kSheenReach = 0.6F;

// The tinted glass, in values of the screen: its colour is the tint plus the light at its height.
// Over white a pixel is kTintOpacity * colour + 1 - kTintOpacity, at most 0.26. There white text of
// kTextOpacity has a contrast of 4.6; over anything darker it has more.
constexpr float kTint[] = {0.062F, 0.066F, 0.078F};
constexpr float kTintLight = 0.05F;  // at the top
constexpr float kTintOpacity = 0.84F;

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

int stepAt(double scale) {
    return std::max(1, static_cast<int>(std::lround(kPointsPerValue * scale)));
}

float sheen(int y, const PixelRect& card, int step) {
    const float depth = (static_cast<float>(y * step) - static_cast<float>(card.y)) /
                        (static_cast<float>(std::max(card.height, 1)) * kSheenReach);
    const float left = std::clamp(1 - depth, 0.0F, 1.0F);
    return kSheen * left * left;
}

// A table of the faintest text's light over a channel's light.
class TextLight {
public:
    TextLight() {
        for (std::size_t i = 0; i < values_.size(); ++i) {
            const float shade = encodedFromLinear(static_cast<float>(i) / kSteps);
            values_[i] = static_cast<float>(linearFromEncoded(shade + (1 - shade) * kTextOpacity));
        }
    }
    float on(float light) const {
        return values_[static_cast<std::size_t>(static_cast<int>(std::min(light, 1.0F) * kSteps))];
    }

private:
    static constexpr std::size_t kSteps = 4096;
    std::array<float, kSteps + 1> values_{};
};

struct Light {
    float red, green, blue;

    Light scaled(float scale, float added) const {
        return {red * scale + added, green * scale + added, blue * scale + added};
    }
    bool isReadable(const TextLight& text, float contrast) const {
        const float letters = luminance(text.on(red), text.on(green), text.on(blue));
        return letters + 0.05F >= contrast * (luminance(red, green, blue) + 0.05F);
    }
    // Spreads the channels away from grey, further for pale colours than for saturated ones. No
    // channel falls below 0, so that the hue is kept.
    Light spread() const {
        const float grey = luminance(red, green, blue);
        if (grey <= 0) return *this;
        const float fullness = 1 - std::min({red, green, blue}) / grey;
        const float bright = grey * grey / (grey * grey + kHalfBright * kHalfBright);
        const float wanted = kSpread + kBrightSpread * bright;
        const float amount = wanted / (1 + wanted * fullness);
        const auto channel = [&](float light) { return light * (1 + amount * (light / grey - 1)); };
        return {channel(red), channel(green), channel(blue)};
    }
};

// One value for each square of `step` pixels.
Plane planeOver(const PixelRect& picture, int step, float value) {
    return {(picture.width + step - 1) / step, (picture.height + step - 1) / step, value};
}

Light meanLight(const Pixels& picture, const PixelRect& part) {
    const auto& values = linearValues();
    Light sum{};
    for (int y = part.y; y < part.maxY(); ++y) {
        const std::uint32_t* const row = picture.row(y);
        for (int x = part.x; x < part.maxX(); ++x) {
            sum.red += values[row[x] >> 16 & 0xff];
            sum.green += values[row[x] >> 8 & 0xff];
            sum.blue += values[row[x] & 0xff];
        }
    }
    return sum.scaled(1 / static_cast<float>(part.width * part.height), 0);
}

// The mean of each square of `step` pixels, in linear light, because encoded values must not be
// averaged.
GlassPicture reduced(const Pixels& picture, int step) {
    const Plane empty = planeOver(picture.bounds(), step, 0);
    GlassPicture result{.step = step, .red = empty, .green = empty, .blue = empty};
    for (int y = 0; y < empty.height; ++y)
        for (int x = 0; x < empty.width; ++x) {
            const PixelRect square{x * step, y * step, step, step};
            const Light mean = meanLight(picture, square.intersection(picture.bounds()));
            result.red.at(x, y) = mean.red;
            result.green.at(x, y) = mean.green;
            result.blue.at(x, y) = mean.blue;
        }
    return result;
}

// The share of the light that stays. Bright light is compressed below the text's limit and dark
// light keeps its share, so that a sun behind the card does not darken the sky around it. Less
// light is always more readable.
float scaleFor(const Light& light, const TextLight& text, float contrast) {
    constexpr float kAdded = kVeil + kSheen;  // added everywhere, so that the sheen stays visible
    constexpr int kHalvings = 12;
    float readable = 0;
    if (light.scaled(kHighestScale, kAdded).isReadable(text, contrast)) {
        readable = kHighestScale;
    } else {
        // A fixed number of steps without branches, because the branch would be unpredictable.
        float half = kHighestScale / 2;
        for (int i = 0; i < kHalvings; ++i, half /= 2)
            readable +=
                half * static_cast<float>(
                           light.scaled(readable + half, kAdded).isReadable(text, contrast));
    }
    return readable > 0 ? readable * (1 - std::exp(-kDimming / readable)) : 0;
}

// The contrast to keep this many points below the last faint text. It falls without a visible edge.
float leastContrast(double below) {
    const auto share = static_cast<float>(std::clamp(below / kTransition, 0.0, 1.0));
    return kTextContrast + (kSymbolContrast - kTextContrast) * share * share * (3 - 2 * share);
}

// The values that the card's pixels are interpolated from.
PixelRect placesUnder(const PixelRect& card, const GlassPicture& glass) {
    const int left = card.x / glass.step - 1;
    const int top = card.y / glass.step - 1;
    return PixelRect{left, top, card.maxX() / glass.step + 2 - left,
                     card.maxY() / glass.step + 2 - top}
        .intersection({0, 0, glass.red.width, glass.red.height});
}

// Increases saturation, dims, adds veil and sheen, and encodes for the screen.
void tone(GlassPicture& glass, const PixelRect& card, double textBottom, double scale) {
    static const TextLight text;
    const PixelRect places = placesUnder(card, glass);
    for (int y = places.y; y < places.maxY(); ++y) {
        const float added = kVeil + sheen(y, card, glass.step);
        const float contrast = leastContrast((y * glass.step - card.y) / scale - textBottom);
        for (int x = places.x; x < places.maxX(); ++x) {
            const Light light =
                Light{glass.red.at(x, y), glass.green.at(x, y), glass.blue.at(x, y)}.spread();
            const Light toned = light.scaled(scaleFor(light, text, contrast), added);
            glass.red.at(x, y) = encodedFromLinear(std::min(1.0F, toned.red));
            glass.green.at(x, y) = encodedFromLinear(std::min(1.0F, toned.green));
            glass.blue.at(x, y) = encodedFromLinear(std::min(1.0F, toned.blue));
        }
    }
}

}  // namespace

// How dark a black tint over white must be for the card's faintest text.
double darkTintOpacity() {
    const auto& linear = linearValues();
    const auto contrast = [&](std::size_t grey) {
        const auto text =
            static_cast<std::size_t>(std::lround(grey + (255.0 - grey) * kTextOpacity));
        return (linear[text] + 0.05) / (linear[grey] + 0.05);
    };
    std::size_t grey = 255;
    while (contrast(grey) < kTextContrast) --grey;
    return 1 - static_cast<double>(grey) / 255;
}

GlassPicture makeGlass(const Pixels& backdrop, const PixelRect& card, double textBottom,
                       double scale) {
    const int step = stepAt(scale);
    GlassPicture glass = reduced(backdrop, step);
    for (Plane* plane : {&glass.red, &glass.green, &glass.blue})
        blur(*plane, kBlurDeviation * scale / step);
    tone(glass, card, textBottom, scale);
    return glass;
}

GlassPicture makeTintedGlass(const PixelRect& picture, const PixelRect& card, double scale) {
    const int step = stepAt(scale);
    const auto plane = [&](float tint) {
        Plane values = planeOver(picture, step, tint);
        for (int y = 0; y < values.height; ++y)
            for (int x = 0; x < values.width; ++x)
                values.at(x, y) += sheen(y, card, step) * (kTintLight / kSheen);
        return values;
    };
    return {step, kTintOpacity, plane(kTint[0]), plane(kTint[1]), plane(kTint[2])};
}

}  // namespace quorvane

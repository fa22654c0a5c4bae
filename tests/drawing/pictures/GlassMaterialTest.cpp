// The card's look as pictures: readable on every lock screen, soft, and clear where it should be.
#include "drawing/pictures/GlassMaterial.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numeric>
#include <string>

#include "AddOnKit/card/PlayerLayout.hpp"
#include "drawing/pictures/Blur.hpp"
#include "drawing/pictures/CardChrome.hpp"
#include "drawing/pictures/CardShape.hpp"

namespace quorvane {
namespace {

constexpr CardStyle kStyle{{400, 222}, 52, 30, 1, 0.25, 22, 8, 106};
constexpr double kVolumeFill = 0.8;  // the quietest that has to be seen below the texts

// Relative luminance of an sRGB pixel, from 0 to 1.
double relativeLuminance(std::uint32_t pixel) {
    double sum = 0;
    for (const auto& [shift, share] : {std::pair{16, 0.2126}, {8, 0.7152}, {0, 0.0722}}) {
        const double value = (pixel >> shift & 0xff) / 255.0;
        sum += share * (value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4));
    }
    return sum;
}

// The contrast ratio of white text of this opacity on a pixel, from 1 to 21.
double contrastWithWhite(std::uint32_t pixel, double opacity) {
    std::uint32_t text = 0;
    for (const int shift : {16, 8, 0}) {
        const double shade = pixel >> shift & 0xff;
        text |= static_cast<std::uint32_t>(std::lround(shade + (255 - shade) * opacity)) << shift;
    }
    return (relativeLuminance(text) + 0.05) / (relativeLuminance(pixel) + 0.05);
}

struct LockScreen {
    const char* name;
    std::function<std::uint32_t(int x, int y)> color;  // at a place in points
};

void PrintTo(const LockScreen& lockScreen, std::ostream* out) { *out << lockScreen.name; }

Pixels picture(const LockScreen& lockScreen, double scale) {
    Pixels result{static_cast<int>(std::lround(504 * scale)),
                  static_cast<int>(std::lround(326 * scale))};
    for (int y = 0; y < result.height; ++y)
        for (int x = 0; x < result.width; ++x)
            result.row(y)[x] = kOpaqueBlack | lockScreen.color(static_cast<int>(x / scale),
                                                               static_cast<int>(y / scale));
    return result;
}

class CardOn : public testing::TestWithParam<LockScreen> {};

// The least contrast of white of this opacity in these rows, in points. Inside the light edge,
// which no text reaches.
double leastContrast(const Pixels& chrome, double scale, double top, double bottom,
                     double opacity) {
    double least = 21;
    for (int y = int(top * scale); y < int(bottom * scale); ++y)
        for (int x = int(90 * scale); x < int(414 * scale); ++x)
            least = std::min(least, contrastWithWhite(chrome.at(x, y), opacity));
    return least;
}

TEST_P(CardOn, KeepsItsQuietestTextReadableAndItsSymbolsSeen) {
    for (const double scale : {1.0, 1.25, 2.0}) {
        const Pixels chrome = makeCardChrome(picture(GetParam(), scale), kStyle, scale);
        const double text =
            leastContrast(chrome, scale, 55, 52 + 106, PlayerLayout::kSecondaryOpacity);
        const double symbols = leastContrast(chrome, scale, 52 + 106, 271, kVolumeFill);
        EXPECT_GE(text, 4.5) << scale;
        EXPECT_GE(symbols, 3) << scale;
        RecordProperty("text", std::to_string(text));
        RecordProperty("symbols", std::to_string(symbols));
    }
}

// The same where the lock screen cannot be read: the glass lets it through unblurred.
TEST_P(CardOn, KeepsTheSameTextReadableOnTintedGlass) {
    for (const double scale : {1.0, 1.25, 2.0}) {
        const Pixels behind = picture(GetParam(), scale);
        Pixels seen = makeTintedCardChrome(behind.width, behind.height, kStyle, scale);
        EXPECT_EQ(seen.at(0, 0), 0u);
        for (int y = 0; y < seen.height; ++y)
            for (int x = 0; x < seen.width; ++x) {
                const std::uint32_t glass = seen.at(x, y);
                const double rest = 1 - (glass >> 24) / 255.0;
                std::uint32_t both = kOpaqueBlack;
                for (const int shift : {0, 8, 16})
                    both += std::uint32_t(std::lround((glass >> shift & 0xff) +
                                                      rest * (behind.at(x, y) >> shift & 0xff)))
                            << shift;
                seen.row(y)[x] = both;
            }
        const double text = leastContrast(seen, scale, 55, 271, PlayerLayout::kSecondaryOpacity);
        EXPECT_GE(text, 4.5) << scale;
        RecordProperty("tinted", std::to_string(text));
    }
}

TEST_P(CardOn, ItsShadowLiesOnlyAroundIt) {
    const Pixels chrome = makeCardChrome(picture(GetParam(), 1), kStyle, 1);
    const auto alpha = [&](int x, int y) { return static_cast<int>(chrome.at(x, y) >> 24); };
    for (const auto& [x, y] : {std::pair{0, 0}, {503, 0}, {0, 325}, {503, 325}, {252, 0}})
        EXPECT_LE(alpha(x, y), 1) << x << ", " << y;
    // Darkest at the card's lower edge, falling from there on, and stronger below than above.
    EXPECT_GT(alpha(252, 276), 30);
    EXPECT_LE(alpha(252, 276), 64) << "a quarter at most";
    for (int y = 276; y < 325; ++y) EXPECT_GE(alpha(252, y), alpha(252, y + 1)) << y;
    EXPECT_GT(alpha(252, 290), alpha(252, 36));
    EXPECT_EQ(chrome.at(252, 290) & 0xffffff, 0u) << "black";
}

TEST_P(CardOn, HasALightEdgeAndSmoothCorners) {
    const Pixels chrome = makeCardChrome(picture(GetParam(), 2), kStyle, 2);
    EXPECT_GT(relativeLuminance(chrome.at(504, 104)), relativeLuminance(chrome.at(504, 108)));
    // The corner's outline runs over pixels that it covers in part.
    int partly = 0;
    for (int y = 104; y < 164; ++y)
        for (int x = 104; x < 164; ++x) {
            const int alpha = static_cast<int>(chrome.at(x, y) >> 24);
            partly += alpha > 70 && alpha < 250;
        }
    EXPECT_GT(partly, 40);
    EXPECT_LT(partly, 150);
}

std::uint32_t busy(int x, int y) {
    const int cell = (x / 24 + y / 24) % 3;
    if ((x * 7 + y * 13) % 11 == 0) return 0xffffff;
    return cell == 0 ? 0xff3030 : cell == 1 ? 0x30ff60 : 0x3050ff;
}

INSTANTIATE_TEST_SUITE_P(
    LockScreen, CardOn,
    testing::Values(LockScreen{"White", [](int, int) { return 0xffffffu; }},
                    LockScreen{"Black", [](int, int) { return 0u; }}, LockScreen{"Busy", busy},
                    LockScreen{"Yellow", [](int, int) { return 0xffe000u; }},
                    LockScreen{"Blue", [](int, int) { return 0x0000ffu; }},
                    LockScreen{"HalfBright",
                               [](int x, int) { return x < 252 ? 0xffffffu : 0x000000u; }}),
    [](const auto& about) { return std::string{about.param.name}; });

TEST(GlassMaterial, IsTellableFromABlackScreenAndKeepsTheColorOfOthers) {
    const Pixels onBlack = makeCardChrome(picture({"", [](int, int) { return 0u; }}, 1), kStyle, 1);
    EXPECT_GT(onBlack.at(252, 200) & 0xff, 16u);
    const Pixels onBlue =
        makeCardChrome(picture({"", [](int, int) { return 0x336699u; }}, 1), kStyle, 1);
    const std::uint32_t blue = onBlue.at(252, 200);
    EXPECT_GT(blue & 0xff, blue >> 8 & 0xff);
    EXPECT_GT(blue >> 8 & 0xff, blue >> 16 & 0xff);
    // Nor does a pale sky turn grey, though it is dimmed most.
    const Pixels onSky =
        makeCardChrome(picture({"", [](int, int) { return 0xbfe0f5u; }}, 1), kStyle, 1);
    for (const int y : {150, 200})
        EXPECT_GT(onSky.at(252, y) & 0xff, (onSky.at(252, y) >> 16 & 0xff) * 3 / 2) << y;
    // A sun behind the card takes nothing from the sky beside it.
    const Pixels besideWhite = makeCardChrome(
        picture({"", [](int x, int) { return x < 200 ? 0xffffffu : 0x336699u; }}, 1), kStyle, 1);
    EXPECT_NEAR(besideWhite.at(400, 200) & 0xff, onBlue.at(400, 200) & 0xff, 3);
}

TEST(GlassMaterial, TintsWhiteJustDarkEnough) {
    const auto contrastUnder = [](double tint) {
        const auto grey = static_cast<std::uint32_t>(std::lround(255 * (1 - tint)));
        return contrastWithWhite(grey * 0x010101, PlayerLayout::kSecondaryOpacity);
    };
    EXPECT_GE(contrastUnder(darkTintOpacity()), 4.5);
    EXPECT_LT(contrastUnder(darkTintOpacity() - 0.02), 4.5);
}

TEST(Blur, SpreadsLikeAGaussianWithoutMovingOrLosingLight) {
    for (const double deviation : {0.8, 2.0, 5.5, 11.0}) {
        Plane plane{121, 101};
        plane.at(60, 50) = 1;
        blur(plane, deviation);
        double sum = 0, meanX = 0, variance = 0;
        for (int y = 0; y < plane.height; ++y)
            for (int x = 0; x < plane.width; ++x) {
                sum += plane.at(x, y);
                meanX += plane.at(x, y) * x;
                variance += plane.at(x, y) * (x - 60) * (x - 60);
            }
        EXPECT_NEAR(sum, 1, 1e-3) << deviation;
        EXPECT_NEAR(meanX, 60, 0.1) << deviation;
        EXPECT_NEAR(std::sqrt(variance), deviation, 0.35) << deviation;
        EXPECT_NEAR(plane.at(70, 50), plane.at(60, 60), 1e-6) << "the same in both directions";
    }
    Plane even{30, 3, 0.25F};
    blur(even, 7);
    for (const float value : even.values) EXPECT_NEAR(value, 0.25F, 1e-5);
}

TEST(CardShape, HoldsWhatItsRoundedRectangleHolds) {
    const CardShape shape{{400, 222}, 30};
    EXPECT_TRUE(shape.contains({200, 111}));
    EXPECT_TRUE(shape.contains({200, 0.5}));
    EXPECT_FALSE(shape.contains({200, -0.5}));
    EXPECT_FALSE(shape.contains({400.5, 111}));
    for (const Point corner : {Point{0, 0}, {400, 0}, {0, 222}, {400, 222}}) {
        const double inX = corner.x == 0 ? 1 : -1;
        const double inY = corner.y == 0 ? 1 : -1;
        // The circle's tip lies 30 * (1 - 1/sqrt(2)) = 8.8 in from both edges.
        EXPECT_FALSE(shape.contains({corner.x + inX * 7.8, corner.y + inY * 7.8}));
        EXPECT_TRUE(shape.contains({corner.x + inX * 9.8, corner.y + inY * 9.8}));
    }
    EXPECT_NEAR(shape.distance({-3, 111}), 3, 1e-9);
    EXPECT_NEAR(shape.distance({200, 20}), -20, 1e-9);
    EXPECT_TRUE((CardShape{{20, 10}, 30}.contains({10, 5}))) << "a radius beyond half the height";
}

}  // namespace
}  // namespace quorvane

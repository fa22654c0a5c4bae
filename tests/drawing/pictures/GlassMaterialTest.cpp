// The card's look as pictures: readable on every lock screen, soft, and clear where it should be.
#include "drawing/pictures/GlassMaterial.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "AddOnKit/card/PlayerLayout.hpp"
#include "drawing/pictures/Blur.hpp"
#include "drawing/pictures/CardChrome.hpp"
#include "drawing/pictures/CardShape.hpp"

namespace quorvane {
namespace {

constexpr CardStyle kStyle{{400, 222}, 52, 30, 1, 0.25, 22, 8, 106};
constexpr double kVolumeFill = 0.8;  // the quietest that must be visible below the texts

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

using LockScreen = std::function<std::uint32_t(int x, int y)>;  // a colour for each place in points

LockScreen plain(std::uint32_t color) {
    return [color](int, int) { return color; };
}
std::uint32_t busy(int x, int y) {
    const int cell = (x / 24 + y / 24) % 3;
    if ((x * 7 + y * 13) % 11 == 0) return 0xffffff;
    return cell == 0 ? 0xff3030 : cell == 1 ? 0x30ff60 : 0x3050ff;
}
// White up to this column.
LockScreen brightBefore(int end, std::uint32_t rest) {
    return [=](int x, int) { return x < end ? 0xffffffu : rest; };
}

Pixels chromeOn(const LockScreen& lockScreen, double scale = 1) {
    Pixels backdrop{static_cast<int>(std::lround(504 * scale)),
                    static_cast<int>(std::lround(326 * scale))};
    for (int y = 0; y < backdrop.height; ++y)
        for (int x = 0; x < backdrop.width; ++x)
            backdrop.row(y)[x] =
                kOpaqueBlack | lockScreen(static_cast<int>(x / scale), static_cast<int>(y / scale));
    return makeCardChrome(backdrop, kStyle, scale);
}

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

TEST(GlassMaterial, KeepsTheQuietestTextReadableAndSymbolsSeenOnEveryLockScreen) {
    const std::pair<const char*, LockScreen> lockScreens[] = {
        {"white", plain(0xffffff)},  {"black", plain(0)},       {"busy", busy},
        {"yellow", plain(0xffe000)}, {"blue", plain(0x0000ff)}, {"half", brightBefore(252, 0)}};
    for (const auto& [name, lockScreen] : lockScreens)
        for (const double scale : {1.0, 1.25, 2.0}) {
            const Pixels chrome = chromeOn(lockScreen, scale);
            EXPECT_GE(leastContrast(chrome, scale, 55, 158, PlayerLayout::kSecondaryOpacity), 4.5)
                << name << scale;
            EXPECT_GE(leastContrast(chrome, scale, 158, 271, kVolumeFill), 3) << name << scale;
        }
}

// Where the lock screen cannot be read, the tinted glass lets it through unblurred.
TEST(GlassMaterial, KeepsTheSameTextReadableOnTintedGlass) {
    for (const LockScreen& lockScreen : {plain(0xffffff), plain(0), LockScreen{busy}}) {
        Pixels seen = makeTintedCardChrome(504, 326, kStyle, 1);
        EXPECT_EQ(seen.at(0, 0), 0u);
        for (int y = 0; y < seen.height; ++y)
            for (int x = 0; x < seen.width; ++x) {
                const std::uint32_t glass = seen.at(x, y);
                const double rest = 1 - (glass >> 24) / 255.0;
                std::uint32_t both = kOpaqueBlack;
                for (const int shift : {0, 8, 16})
                    both += std::uint32_t(std::lround((glass >> shift & 0xff) +
                                                      rest * (lockScreen(x, y) >> shift & 0xff)))
                            << shift;
                seen.row(y)[x] = both;
            }
        EXPECT_GE(leastContrast(seen, 1, 55, 271, PlayerLayout::kSecondaryOpacity), 4.5);
    }
}

TEST(CardChrome, HasAShadowAroundItALightEdgeAndSmoothCorners) {
    const Pixels chrome = chromeOn(busy);
    const auto alpha = [&](int x, int y) { return static_cast<int>(chrome.at(x, y) >> 24); };
    for (const auto& [x, y] : {std::pair{0, 0}, {503, 0}, {0, 325}, {503, 325}, {252, 0}})
        EXPECT_LE(alpha(x, y), 1) << x << ", " << y;
    // Darkest at the card's lower edge, falling from there on, and stronger below than above.
    EXPECT_GT(alpha(252, 276), 30);
    EXPECT_LE(alpha(252, 276), 64) << "a quarter at most";
    for (int y = 276; y < 325; ++y) EXPECT_GE(alpha(252, y), alpha(252, y + 1)) << y;
    EXPECT_GT(alpha(252, 290), alpha(252, 36));
    EXPECT_EQ(chrome.at(252, 290) & 0xffffff, 0u) << "black";

    const Pixels sharp = chromeOn(plain(0x336699), 2);
    EXPECT_GT(relativeLuminance(sharp.at(504, 104)), relativeLuminance(sharp.at(504, 108)));
    // The corner's outline runs over pixels that it covers in part.
    int partly = 0;
    for (int y = 104; y < 164; ++y)
        for (int x = 104; x < 164; ++x) {
            const std::uint32_t strength = sharp.at(x, y) >> 24;
            partly += strength > 70 && strength < 250;
        }
    EXPECT_NEAR(partly, 95, 55);
}

TEST(GlassMaterial, IsTellableFromABlackScreenAndKeepsTheColorOfOthers) {
    EXPECT_GT(chromeOn(plain(0)).at(252, 200) & 0xff, 16u);
    const std::uint32_t blue = chromeOn(plain(0x336699)).at(252, 200);
    EXPECT_GT(blue & 0xff, blue >> 8 & 0xff);
    EXPECT_GT(blue >> 8 & 0xff, blue >> 16 & 0xff);
    // A pale sky does not turn grey either, although it is dimmed most.
    const Pixels onSky = chromeOn(plain(0xbfe0f5));
    for (const int y : {150, 200})
        EXPECT_GT(onSky.at(252, y) & 0xff, (onSky.at(252, y) >> 16 & 0xff) * 3 / 2) << y;
    // A bright area behind the card does not change the sky beside it.
    EXPECT_NEAR(chromeOn(brightBefore(200, 0x336699)).at(400, 200) & 0xff, blue & 0xff, 3);
}

TEST(Blur, SpreadsLikeAGaussianWithoutMovingOrLosingLight) {
    for (const double deviation : {0.8, 2.0, 5.5, 11.0}) {
        Plane plane{121, 101};
        plane.at(60, 50) = 1;
        blur(plane, deviation);
        double sum = 0, variance = 0;
        for (int y = 0; y < plane.height; ++y)
            for (int x = 0; x < plane.width; ++x) {
                sum += plane.at(x, y);
                variance += plane.at(x, y) * (x - 60) * (x - 60);
            }
        EXPECT_NEAR(sum, 1, 1e-3) << deviation;
        EXPECT_NEAR(std::sqrt(variance), deviation, 0.35) << deviation;
        for (const Point place : {Point{50, 50}, {60, 40}, {60, 60}})
            EXPECT_NEAR(plane.at(70, 50), plane.at(int(place.x), int(place.y)), 1e-6);
    }
    Plane even{30, 3, 0.25F};
    blur(even, 7);
    EXPECT_NEAR(even.at(0, 0), 0.25F, 1e-5);
}

TEST(CardShape, HoldsWhatItsRoundedRectangleHolds) {
    const CardShape shape{{400, 222}, 30};
    // The circle's tip lies 30 * (1 - 1/sqrt(2)) = 8.8 in from both edges.
    for (const Point point : {Point{200, 0.5}, {9.8, 9.8}, {390.2, 9.8}, {390.2, 212.2}})
        EXPECT_TRUE(shape.contains(point)) << describe(point);
    for (const Point point : {Point{200, -0.5}, {400.5, 111}, {7.8, 214.2}, {392.2, 7.8}})
        EXPECT_FALSE(shape.contains(point)) << describe(point);
    EXPECT_NEAR(shape.distance({-3, 111}), 3, 1e-9);
    EXPECT_NEAR(shape.distance({200, 20}), -20, 1e-9);
    EXPECT_TRUE((CardShape{{20, 10}, 30}.contains({10, 5}))) << "a radius beyond half the height";
}

}  // namespace
}  // namespace quorvane

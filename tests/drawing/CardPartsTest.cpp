// Parts that every canvas and every system's windows share.
#include <gtest/gtest.h>

#include <cmath>

#include "drawing/AccessibleScene.hpp"
#include "drawing/MarginHitTest.hpp"
#include "drawing/SingleLine.hpp"
#include "drawing/Spring.hpp"
#include "drawing/TextPlacement.hpp"
#include "drawing/pictures/EncodedImage.hpp"
#include "drawing/pictures/PictureLimits.hpp"

namespace quorvane {
namespace {

constexpr Rect kField{100, 20, 200, 18};

TEST(TextPlacement, MirrorsLeadingAndTrailingButNotTheMiddle) {
    TextNode node{.frame = kField};
    EXPECT_EQ(leftEdgeOf(node, 50, false), 100);
    EXPECT_EQ(leftEdgeOf(node, 50, true), 250);
    node.alignment = TextAlignment::trailing;
    EXPECT_EQ(leftEdgeOf(node, 50, false), 250);
    EXPECT_EQ(leftEdgeOf(node, 50, true), 100);
    node.alignment = TextAlignment::center;
    EXPECT_EQ(leftEdgeOf(node, 50, true), 175);
    EXPECT_FALSE(isTooWide(node, 200.4));
    EXPECT_TRUE(isTooWide(node, 200.6));
    EXPECT_EQ(baselineOf(kField, {.ascent = 12, .descent = 4}), 33);
}

TEST(TextPlacement, ShowsTheCopiesThatReachIntoTheField) {
    TextNode node{.frame = kField, .scroll = TextNode::Scroll{.offset = 0, .gap = 40, .fade = 20}};
    EXPECT_EQ(copiesOf(node, 100, 300, false), (std::vector<double>{100}));
    node.scroll->offset = 190;
    EXPECT_EQ(copiesOf(node, 100, 300, false), (std::vector<double>{-90, 250}));
    // From right to left the copy follows on the left.
    EXPECT_EQ(copiesOf(node, 0, 300, true), (std::vector<double>{190, -150}));
    node.alignment = TextAlignment::trailing;
    EXPECT_EQ(copiesOf(node, 0, 300, false), (std::vector<double>{190, -150}));
    // A stage that moves the line ends each cycle with the copy in the line's first place.
    node.scroll->offset = -20;
    for (const bool isRightToLeft : {false, true}) {
        const MovedLine moved = movedLine(node, 300, isRightToLeft);
        const double rest = leftEdgeOf(node, 300, isRightToLeft);
        EXPECT_EQ(moved.left, copiesOf(node, rest, 300, isRightToLeft).at(0));
        EXPECT_EQ(moved.copyLeft + moved.distance, moved.left);
        EXPECT_EQ(moved.distance, isRightToLeft ? -340 : 340);
        EXPECT_EQ(moved.area, (Rect{std::min(moved.left, moved.copyLeft), 20, 640, 18}));
    }
    node.scroll->gap = -300;
    EXPECT_TRUE(copiesOf(node, 100, 300, false).empty());
    for (const FadeStop& stop : fadeStops(node))
        EXPECT_NEAR(fadeStrength(node, stop.place * kField.width), stop.strength, 1e-9);
    EXPECT_DOUBLE_EQ(fadeStops(node)[6].place, 0.9);
    node.scroll->fade = 0;
    EXPECT_EQ(fadeStrength(node, 0), 1);
}

TEST(PictureLimits, RefuseWhatWouldTakeTooMuchMemory) {
    EXPECT_TRUE(isDecodable({8000, 5000}));
    EXPECT_TRUE(isDecodable({16384, 1}));
    for (const PictureSize size : {PictureSize{8000, 5001}, {16385, 1}, {0, 10}, {~0U, ~0U}})
        EXPECT_FALSE(isDecodable(size)) << size.width;
    EXPECT_EQ(keptLongerSide({3000, 1000}), 768u);
    EXPECT_EQ(keptLongerSide({1000, 200}), 1000u);
    EXPECT_EQ(keptLongerSide({16384, 257}), 16320u);
}

TEST(EncodedImage, TypeIsToldByItsFirstBytes) {
    using namespace std::string_view_literals;
    const std::pair<std::string_view, std::string_view> rows[] = {
        {"\x89PNG\r\n\x1A\n"sv, "image/png"},
        {"\xFF\xD8\xFF"sv, "image/jpeg"},
        {"GIF87a"sv, "image/gif"},
        {"GIF89a"sv, "image/gif"},
        {"BM"sv, "image/bmp"},
        // Of 300 by 200 pixels: lossy, lossless, extended.
        {"RIFF\x24\0\0\0WEBPVP8 \x18\0\0\0\x30\x01\0\x9D\x01\x2A\x2C\x41\xC8\x80"sv, "image/webp"},
        {"RIFF\x24\0\0\0WEBPVP8L\x18\0\0\0\x2F\x2B\xC1\x31\0....."sv, "image/webp"},
        {"RIFF\x24\0\0\0WEBPVP8X\x0A\0\0\0\x10\0\0\0\x2B\x01\0\xC7\0\0"sv, "image/webp"}};
    for (const auto& [start, type] : rows) {
        EXPECT_STREQ(pictureType(bytesOf(start)), type.data());
        EXPECT_EQ(pictureType(bytesOf(start.substr(0, start.size() - 1))), nullptr) << type;
    }
    for (const auto other :
         {"<svg/>"sv, "RIFF\x24\0\0\0WAVEVP8X\x0A\0\0\0\x10\0\0\0\x2B\x01\0\xC7\0\0"sv, "GIF88a"sv,
          "RIFF\x24\0\0\0WEBPICCP\x0A\0\0\0\x10\0\0\0\x2B\x01\0\xC7\0\0"sv,
          // 16,383 by 16,383, 0 by 200, and 8,001 by 5,000 pixels.
          "RIFF\x16\0\0\0WEBPVP8L\x0A\0\0\0\x2F\xFE\xBF\xFF\x0F\x88\x88\x08\0\0"sv,
          "RIFF\x24\0\0\0WEBPVP8 \x18\0\0\0\x30\x01\0\x9D\x01\x2A\0\x40\xC8\x80"sv,
          "RIFF\x24\0\0\0WEBPVP8X\x0A\0\0\0\x10\0\0\0\x40\x1F\0\x87\x13\0"sv})
        EXPECT_EQ(pictureType(bytesOf(other)), nullptr) << other;
}

TEST(Geometry, PicturesCoverTheirFrames) {
    EXPECT_EQ(covering({10, 10, 100, 50}, {20, 20}), (Rect{10, -15, 100, 100}));
    EXPECT_EQ(covering({0, 0, 64, 64}, {300, 100}), (Rect{-64, 0, 192, 64}));
    EXPECT_EQ(centredIn({0, 0, 64, 64}, {30, 20}), (Rect{17, 22, 30, 20}));
    EXPECT_EQ(fittingRadius({0, 0, 40, 6}, 10), 3);
    EXPECT_EQ(fittingRadius({0, 0, 40, 6}, -1), 0);
}

TEST(MarginHitTest, TakesTheCardAndLeavesTheMargin) {
    MarginHitTest mouse;
    mouse.setCard({.card = {400, 222}, .shadowMargin = 52});
    mouse.moveTo({20, 20});
    EXPECT_TRUE(mouse.ignoresMouse());  // as the owner wants at first
    EXPECT_FALSE(mouse.mustAskForPointer());
    mouse.setIgnored(false);
    EXPECT_TRUE(mouse.ignoresMouse() && mouse.mustAskForPointer());
    mouse.moveTo({52, 273});
    EXPECT_FALSE(mouse.ignoresMouse() || mouse.mustAskForPointer());
    mouse.setPressed(true);
    mouse.moveTo({452, 100});
    EXPECT_FALSE(mouse.ignoresMouse()) << "a drag does not lose the window";
    mouse.setIgnored(true);
    mouse.setIgnored(false);
    EXPECT_TRUE(mouse.ignoresMouse()) << "the press has ended";
    mouse.moveTo({504, 100});
    EXPECT_FALSE(mouse.ignoresMouse() || mouse.mustAskForPointer()) << "beyond the window";
}

TEST(AccessibleScene, TellsWhatAPersonWouldNotice) {
    using ID = SceneControl::ID;
    using Role = SceneControl::Role;
    using Kind = AccessibilityChange::Kind;
    const SceneControl title{.id = ID::title, .role = Role::text, .value = "Tideline"};
    const SceneControl other{.id = ID::title, .role = Role::text, .value = "Clouds"};
    const SceneControl heart{.id = ID::love, .role = Role::button};
    const SceneControl play{.id = ID::playPause, .role = Role::button, .label = "Play"};
    const SceneControl pause{.id = ID::playPause, .role = Role::button, .label = "Pause"};
    const SceneControl artwork{.id = ID::artwork, .role = Role::image};
    const SceneControl volume{.id = ID::volume, .role = Role::slider, .value = "50 %"};
    const SceneControl louder{.id = ID::volume, .role = Role::slider, .value = "55 %"};
    const SceneControl progress{.id = ID::progress, .role = Role::progress, .value = "0:01"};
    const SceneControl later{.id = ID::progress, .role = Role::progress, .value = "0:02"};
    const SceneControl left{.id = ID::remaining, .role = Role::text, .value = "-0:09"};
    const SceneControl lessLeft{.id = ID::remaining, .role = Role::text, .value = "-0:08"};
    EXPECT_EQ(accessibilityChanges({title, heart, play, volume, progress, left},
                                   {artwork, other, pause, louder, later, lessLeft}),
              (std::vector<AccessibilityChange>{{Kind::disappeared, ID::love},
                                                {Kind::appeared, ID::artwork},
                                                {Kind::value, ID::title},
                                                {Kind::label, ID::playPause},
                                                {Kind::value, ID::volume}}));
}

TEST(SingleLine, KeepsGoodTextAndReplacesTheRest) {
    const std::pair<std::string_view, std::string_view> rows[] = {
        {"Größe 海 🌊", "Größe 海 🌊"},
        {{"a\0b\n\t\x7f", 6}, "a b   "},
        {"a\u2028b\u2029c\u0085d", "a b c d"},
        {"\xC3(", "\uFFFD("},                              // start before something else
        {"\xE0\x80\x80", "\uFFFD\uFFFD\uFFFD"},            // overlong
        {"\xED\xA0\x80x", "\uFFFD\uFFFD\uFFFDx"},          // surrogate
        {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond Unicode
        {"\xFFx\xC3", "\uFFFDx\uFFFD"},
    };
    for (const auto& [text, shown] : rows) EXPECT_EQ(singleLine(text), shown);
    std::string longest;
    for (std::size_t i = 0; i < kLongestLine; ++i) longest += "ö";
    EXPECT_EQ(singleLine(longest), longest);
    EXPECT_EQ(singleLine(longest + "x"), longest + "…");
}

TEST(Spring, ObeysItsEquationOfMotionAndSettles) {
    // mass 1, stiffness (2 pi / d)^2, damping (1 - b) 4 pi / d; derivatives by central differences.
    for (const double bounce : {0.0, 0.05, 0.3}) {
        const Spring spring{.perceptualDuration = 0.5, .bounce = bounce};
        const double stiffness = std::pow(2 * M_PI / 0.5, 2);
        const double damping = (1 - bounce) * 4 * M_PI / 0.5;
        EXPECT_EQ(spring.progress(0), 0);
        EXPECT_LT(spring.progress(0.01), 0.01) << "from rest";
        for (double t = 0.02; t < 0.8; t += 0.05) {
            const double h = 1e-4;
            const double at = spring.progress(t);
            const double before = spring.progress(t - h), after = spring.progress(t + h);
            const double acceleration = (after - 2 * at + before) / (h * h);
            const double velocity = (after - before) / (2 * h);
            EXPECT_NEAR(acceleration + damping * velocity + stiffness * (at - 1), 0, 0.01);
        }
        EXPECT_NEAR(spring.settlingDuration(), 0.75, 0.25);
        EXPECT_NEAR(spring.progress(spring.settlingDuration()), 1, 0.01);
    }
}

TEST(Easing, RunsAlongItsBezierCurve) {
    for (double (*curve)(double) : {easeInOut, easeOut}) {
        EXPECT_NEAR(curve(0), 0, 1e-6);
        EXPECT_NEAR(curve(1), 1, 1e-6);
    }
    // The control points are (0.42, 0), (0.58, 1) and (0, 0), (0.58, 1).
    EXPECT_NEAR(easeInOut(0.274375), 0.15625, 1e-6);
    EXPECT_NEAR(easeOut(0.3425), 0.5, 1e-6);
}

}  // namespace
}  // namespace quorvane

// What every canvas and every system's windows share: places of text and pictures, limits, the
// mouse on the margin.
#include <gtest/gtest.h>

#include "drawing/MarginHitTest.hpp"
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
    EXPECT_EQ(copiesOf(node, leftEdgeOf(node, 300, false), 300, false), (std::vector<double>{100}));
    node.scroll->offset = 190;
    EXPECT_EQ(copiesOf(node, 100, 300, false), (std::vector<double>{-90, 250}));
    // The other way round the copy follows on the left.
    EXPECT_EQ(leftEdgeOf(node, 300, true), 0);
    EXPECT_EQ(copiesOf(node, 0, 300, true), (std::vector<double>{190, -150}));
    node.alignment = TextAlignment::trailing;
    EXPECT_EQ(copiesOf(node, 0, 300, false), (std::vector<double>{190, -150}));
    node.scroll->gap = -300;
    EXPECT_TRUE(copiesOf(node, 100, 300, false).empty());
    const auto stops = fadeStops(node);
    EXPECT_EQ(stops.front().strength + stops.back().strength, 0);
    EXPECT_EQ(stops[5].strength, 1);
    EXPECT_DOUBLE_EQ(stops[5].place, 0.1);
    EXPECT_DOUBLE_EQ(stops[6].place, 0.9);
    for (const FadeStop& stop : stops)
        EXPECT_NEAR(fadeStrength(node, stop.place * kField.width), stop.strength, 1e-9);
    node.scroll->fade = 0;
    EXPECT_EQ(fadeStrength(node, 0), 1);
}

TEST(PictureLimits, RefuseWhatWouldTakeTooMuchMemory) {
    EXPECT_TRUE(isDecodable({8000, 5000}));
    EXPECT_FALSE(isDecodable({8000, 5001}));
    EXPECT_TRUE(isDecodable({16384, 1}));
    EXPECT_FALSE(isDecodable({16385, 1}));
    EXPECT_FALSE(isDecodable({0, 10}));
    // Both sides at their largest do not wrap around.
    EXPECT_FALSE(isDecodable({0xFFFF'FFFF, 0xFFFF'FFFF}));
    EXPECT_EQ(keptLongerSide({3000, 3000}), 256u);
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
        for (std::size_t length = 0; length < start.size(); ++length)
            // A copy of exactly that length, so that a byte too many is noticed.
            EXPECT_EQ(pictureType(copyOf(bytesOf(start).first(length))), nullptr) << type;
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
    EXPECT_TRUE(mouse.ignoresMouse());
    EXPECT_TRUE(mouse.mustAskForPointer());
    mouse.moveTo({52, 273});
    EXPECT_FALSE(mouse.ignoresMouse());
    EXPECT_FALSE(mouse.mustAskForPointer());
    // A drag may leave the card without losing the window.
    mouse.setPressed(true);
    mouse.moveTo({452, 100});
    EXPECT_FALSE(mouse.ignoresMouse());
    mouse.setPressed(false);
    EXPECT_TRUE(mouse.ignoresMouse());
    // Beyond the window it makes no difference, and nobody need look.
    mouse.moveTo({504, 100});
    EXPECT_FALSE(mouse.ignoresMouse());
    EXPECT_FALSE(mouse.mustAskForPointer());
    // A press that ends while all is ignored is over afterwards.
    mouse.setPressed(true);
    mouse.setIgnored(true);
    mouse.setIgnored(false);
    mouse.moveTo({20, 20});
    EXPECT_TRUE(mouse.ignoresMouse());
}

}  // namespace
}  // namespace quorvane

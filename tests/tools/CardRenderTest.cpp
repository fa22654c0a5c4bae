// Whole pictures of the card: the place of each element. Symbols and tracks must match to a point,
// texts to a few, so that another version of a font passes and a shifted or stray element fails.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/platform/linux/drawing/DrawnScene.hpp"
#include "tools/CardStill.hpp"

namespace quorvane {
namespace {

constexpr double kScale = 2;
constexpr double kExact = 1;
constexpr double kText = 4;

// An element and the box that its ink fills, in points.
struct Element {
    std::string_view name;
    Rect ink;
    double tolerance = kExact;
    bool isMirrored = true;  // right to left
};

std::vector<Element> elements() {
    return {
        {"artwork", {20, 20, 64, 64}},
        {"title", {98, 25, 66, 13}, kText},
        {"artist", {98, 46, 119, 17}, kText},
        {"heart", {360, 33, 20, 18}},
        {"progress", {98, 80, 282, 4}},
        {"elapsed", {99, 91, 27, 10}, kText},
        {"remaining", {344, 91, 36, 10}, kText},
        {"previous", {112, 135, 34, 22}, kExact, false},
        {"pause", {190, 133, 20, 26}, kExact, false},
        {"next", {254, 135, 34, 22}, kExact, false},
        {"quiet speaker", {26.5, 187, 9, 14}},
        {"volume", {50, 191, 300, 6}},
        {"loud speaker", {358, 185, 21, 18}},
    };
}

class Picture : public testing::Test {
protected:
    void expect(const std::vector<Element>& expected) {
        options.backdrop = "none";
        options.scale = kScale;
        picture = (*CardStill::make(state, options))->draw(0);
        for (const auto& [name, ink, tolerance, isMirrored] : expected) {
            const Rect found = takeInk(ink.grownBy(tolerance));
            EXPECT_NEAR(found.x, ink.x, tolerance) << name;
            EXPECT_NEAR(found.y, ink.y, tolerance) << name;
            EXPECT_NEAR(found.maxX(), ink.maxX(), tolerance) << name;
            EXPECT_NEAR(found.maxY(), ink.maxY(), tolerance) << name;
        }
        EXPECT_EQ(takeInk({0, 0, 400, 222}), Rect{}) << "an unexpected element was drawn";
    }
    // The box around all ink in the area, which is cleared; empty without any.
    Rect takeInk(const Rect& area) {
        double left = 1e9, top = 1e9, right = 0, bottom = 0;
        auto* const pixels =
            reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(picture.get()));
        for (double y = 0; y < 222; y += 1 / kScale)
            for (double x = 0; x < 400; x += 1 / kScale) {
                auto& pixel = pixels[static_cast<int>((y * 400 * kScale + x) * kScale)];
                if (!area.contains({x, y}) || pixel >> 24 <= 24) continue;
                pixel = 0;
                left = std::min(left, x), right = std::max(right, x + 1 / kScale);
                top = std::min(top, y), bottom = std::max(bottom, y + 1 / kScale);
            }
        return right > 0 ? Rect{left, top, right - left, bottom - top} : Rect{};
    }

    QuorvanePlayerState state{
        .track = XPCTrack{.title = "Tideline",
                          .artist = "Harbour Lights",
                          .duration = 214,
                          .artworkData = SharedBytes{stripes(64, 64, {{1, 0, 0, 1}})}},
        .playerState = XPCPlayerState::playing,
        .playerType = XPCPlayerType::appleMusic,
        .volume = 64,
        .isLoved = true,
        .playerPosition = 83};
    CardRenderOptions options;
    CairoSurface picture;
};

TEST_F(Picture, HasEachElementInItsPlace) { expect(elements()); }

TEST_F(Picture, IsMirroredRightToLeftButForTheTransport) {
    std::vector<Element> mirrored = elements();
    for (Element& element : mirrored)
        if (element.isMirrored) element.ink.x = 400 - element.ink.maxX();
    options.isRightToLeft = true;
    expect(mirrored);
}

TEST_F(Picture, ShowsWhatIsHeld) {
    using ID = SceneControl::ID;
    for (const auto& [id, name, ink] : {std::tuple{ID::playPause, "pause", Rect{176, 122, 48, 48}},
                                        {ID::volume, "volume", Rect{50, 189, 300, 10}}}) {
        std::vector<Element> held = elements();
        std::ranges::find(held, std::string_view{name}, &Element::name)->ink = ink;
        options.pressed = id;
        expect(held);
    }
}

TEST_F(Picture, IsBeforeItsBackdrop) {
    options.scale = 1.25;
    options.backdrop = "#102030";
    const CairoSurface whole = (*CardStill::make(state, options))->draw(0);
    const int width = cairo_image_surface_get_width(whole.get());
    EXPECT_EQ(width, 630);
    const auto* const pixels =
        reinterpret_cast<const std::uint32_t*>(cairo_image_surface_get_data(whole.get()));
    EXPECT_EQ(pixels[130 * width + 130] & 0xffffff, 0xff0000u) << "the artwork";
    EXPECT_EQ(pixels[0] & 0xffffff, 0x102030u);
    options.backdrop = "#10203";
    EXPECT_FALSE(CardStill::make(state, options));
}

}  // namespace
}  // namespace quorvane

// Parts of a card drawn one after the other, as a running card draws them, beside the whole of it.
#include "platform/linux/card/CardPainter.hpp"

#include <gtest/gtest.h>

#include "drawing/SceneChanges.hpp"

namespace quorvane {
namespace {

constexpr CardStyle kStyle{{400, 222}, 52, 30, 1, 0.25, 22, 8};
constexpr double kScale = 2;
constexpr char kTitle[] = "A Slow Parade of Clouds over the Long Way Home";
constexpr char kMixed[] = "Ждём 雨 and jÄgqy, a 🌧 longer way than there is room";

class Card {
public:
    Card() {
        Pixels backdrop{pixels.width, pixels.height};
        for (int y = 0; y < backdrop.height; ++y)
            for (int x = 0; x < backdrop.width; ++x)
                backdrop.row(y)[x] = kOpaqueBlack | static_cast<std::uint32_t>(x / 4 << 16 | y / 3);
        painter_.setBackdrop(backdrop);
    }

    void drawWhole(const Scene& scene, const Transform& transform = {}, double alpha = 1) {
        painter_.draw(surface_.get(), {.scene = scene, .transform = transform, .alpha = alpha});
        last_ = scene;
    }
    std::vector<PixelRect> follow(const Scene& scene) {
        std::vector<PixelRect> parts;
        for (const Rect& area : changedAreas(last_, scene))
            parts.push_back(painter_.pixelsOf(area));
        last_ = scene;
        return painter_.drawParts(surface_.get(), {.scene = scene}, parts);
    }

    Pixels pixels{static_cast<int>(504 * kScale), static_cast<int>(326 * kScale)};

private:
    CardPainter painter_{kStyle, kScale, nullptr};
    CairoSurface surface_ = surfaceOver(pixels);
    Scene last_{};
};

// A title that scrolls under a mark, beside a heart and over a second line.
Scene sceneAt(double offset, const char* title = kTitle, bool isRightToLeft = false,
              double markAlpha = 0) {
    TextNode first{.frame = {86, 17, 248, 28},
                   .text = title,
                   .font = {17, FontStyle::Weight::semibold},
                   .color = Color::white(),
                   .scroll = TextNode::Scroll{offset - 12, 40, 12}};
    TextNode second = first;
    second.frame.y += 22;
    second.color = {1, 0.8, 0.2, 0.58};
    second.scroll->offset += 100;
    Scene scene;
    scene.nodes = {ShapeNode{{200, 18, 20, 26}, 4, Color::white(markAlpha)},
                   first,
                   second,
                   SymbolNode{{322, 20, 44, 44}, "heart.fill", 20, Color::white()},
                   GroupBegin{},
                   ShapeNode{{20, 180, 300, 6}, 3, Color::white(0.25)},
                   GroupEnd{}};
    scene.isRightToLeft = isRightToLeft;
    return scene;
}

TEST(CardPainter, PartsLookAsInTheWholeCard) {
    for (const char* title : {kTitle, kMixed})
        for (const bool isRightToLeft : {false, true}) {
            Card card;
            card.drawWhole(sceneAt(0, title, isRightToLeft));
            Card whole;
            for (const Scene& scene :
                 {sceneAt(1.5, title, isRightToLeft), sceneAt(350.5, title, isRightToLeft),
                  sceneAt(351, title, isRightToLeft, 0.5), sceneAt(441, title, isRightToLeft),
                  sceneAt(442, "Another one", isRightToLeft)}) {
                card.follow(scene);
                whole.drawWhole(scene);
                EXPECT_TRUE(card.pixels == whole.pixels) << title << isRightToLeft;
            }
        }
}

TEST(CardPainter, ReportsOnlyTheRowsThatChange) {
    Card card;
    card.drawWhole(sceneAt(1));
    const std::vector<PixelRect> changed = card.follow(sceneAt(2));
    ASSERT_EQ(changed.size(), 1u);
    EXPECT_EQ(changed.front().width, 248 * kScale);
    EXPECT_GT(changed.front().height, 30 * kScale);
    EXPECT_LT(changed.front().height, 48 * kScale) << "the letters, not the whole frames";
    EXPECT_TRUE(card.follow(sceneAt(2.2)).empty()) << "less than a pixel";
}

TEST(CardPainter, RestsAsBeforeAfterAMovement) {
    Card card;
    card.drawWhole(sceneAt(1));
    const Pixels resting = card.pixels;
    card.drawWhole(sceneAt(1), {.scale = 0.9, .centre = {252, 163}});
    EXPECT_FALSE(card.pixels == resting);
    const Pixels moved = card.pixels;
    card.drawWhole(sceneAt(1), {}, 0);
    EXPECT_EQ(card.pixels.at(400, 300), kOpaqueBlack | 100u << 16 | 100u) << "the backdrop alone";
    card.drawWhole(sceneAt(1), {.scale = 0.9, .centre = {252, 163}});
    EXPECT_TRUE(card.pixels == moved);
    card.drawWhole(sceneAt(1));
    EXPECT_TRUE(card.pixels == resting);
}

}  // namespace
}  // namespace quorvane

#include "Quorvane_Lock_Screen/CardPlacement.hpp"

#include <gtest/gtest.h>

#include <array>

namespace quorvane {
namespace {

constexpr Rect kFullHD{0, 0, 1920, 1080};

Rect ringIn(const Rect& screen) { return Rect{screen.midX(), screen.midY(), 0, 0}.grownBy(95); }

Rect cardIn(const CardPlace& place) {
    return place.frame.grownBy(-kCardShadowMargin * place.scale);
}

TEST(CardPlacement, HasItsDefaultPlace) {
    EXPECT_EQ(CardPlacement::place(kFullHD, {}),
              (CardPlace{CardPlacement::windowFrame(kFullHD), 1}));
    // A second screen to the right and half below the first; odd sizes round to whole points.
    EXPECT_EQ(CardPlacement::windowFrame({1920, -540, 1367, 769}), (Rect{2352, -276, 504, 326}));
}

TEST(CardPlacement, MovesUpOutOfTheMiddleAndBelowWhenThereIsNoRoomAbove) {
    const Rect ring = ringIn(kFullHD);
    const auto above = CardPlacement::place(kFullHD, std::array{ring});
    ASSERT_TRUE(above);
    EXPECT_EQ(above->frame.minY(), ring.maxY());  // the shadow ends where the ring's area begins
    EXPECT_EQ(above->frame.midX(), kFullHD.midX());

    const Rect prompt{660, 480, 600, 590};  // leaves room only at the bottom
    const auto below = CardPlacement::place(kFullHD, std::array{prompt});
    ASSERT_TRUE(below);
    EXPECT_EQ(cardIn(*below).maxY(), prompt.minY() - kCardShadowMargin);

    // An area beside the card does not move it.
    EXPECT_EQ(CardPlacement::place(kFullHD, std::array{Rect{0, 0, 600, 1080}}),
              (CardPlace{CardPlacement::windowFrame(kFullHD), 1}));
}

TEST(CardPlacement, NeverCoversAnAreaAndNeverLeavesTheScreen) {
    for (double width = 640; width <= 3840; width += 160)
        for (double height = 400; height <= 2160; height += 40) {
            const Rect screen{-300, 77, width, height};
            const std::array areas{ringIn(screen),
                                   Rect{screen.midX() - 150, screen.minY() + 40, 300, 60}};
            const auto place = CardPlacement::place(screen, areas);
            if (!place) {
                EXPECT_LT(height, 640) << width << " x " << height;
                continue;
            }
            const Rect card = cardIn(*place);
            for (const Rect& area : areas) EXPECT_FALSE(card.grownBy(7.9).intersects(area));
            EXPECT_TRUE(card.minX() >= screen.minX() && card.maxX() <= screen.maxX());
            EXPECT_TRUE(card.minY() >= screen.minY() && card.maxY() <= screen.maxY());
            EXPECT_NEAR(card.width, place->scale * kCardSize.width, 1e-9);
        }
}

// The screen's size in points, with i3lock's ring in its middle.
TEST(CardPlacement, SmallScreensGetANarrowerMarginThenTheSideThenASmallerCard) {
    const struct {
        Size size;
        double scale;  // 0: no card
        bool isBeside;
    } rows[] = {{{1280, 720}, 1, false}, {{1092.8, 614.4}, 1, true}, {{960, 600}, 0.9, true},
                {{960, 540}, 0.9, true}, {{800, 600}, 0.85, false},  {{800, 480}, 0, false}};
    for (const auto& [size, scale, isBeside] : rows) {
        const Rect screen{0, 0, size.width, size.height};
        SCOPED_TRACE(describe(screen));
        const auto place = CardPlacement::place(screen, std::array{ringIn(screen)});
        ASSERT_EQ(place.has_value(), scale > 0);
        if (!place) continue;
        EXPECT_EQ(place->scale, scale);
        EXPECT_EQ(cardIn(*place).minX() > screen.midX(), isBeside);
    }
}

}  // namespace
}  // namespace quorvane

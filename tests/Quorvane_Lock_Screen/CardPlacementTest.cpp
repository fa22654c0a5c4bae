#include "Quorvane_Lock_Screen/CardPlacement.hpp"

#include <gtest/gtest.h>

#include <array>

namespace quorvane {
namespace {

constexpr Rect kFullHD{0, 0, 1920, 1080};

Rect ringIn(const Rect& screen) { return Rect{screen.midX(), screen.midY(), 0, 0}.grownBy(95); }

Rect cardIn(const Rect& window) { return window.grownBy(-kCardShadowMargin); }

TEST(CardPlacement, StandsAtTheStatedPlace) {
    EXPECT_EQ(CardPlacement::windowFrame(kFullHD), (Rect{708, 482, 504, 326}));
    EXPECT_EQ(CardPlacement::windowFrame(kFullHD, {}), CardPlacement::windowFrame(kFullHD));
    // A second screen to the right and half below the first; odd sizes round to whole points.
    EXPECT_EQ(CardPlacement::windowFrame({1920, -540, 1367, 769}),
              (Rect{2352, -276, 504, 326}));
}

TEST(CardPlacement, MovesUpOutOfTheMiddleAndBelowWhenThereIsNoRoomAbove) {
    const Rect ring = ringIn(kFullHD);
    const auto window = CardPlacement::windowFrame(kFullHD, std::array{ring});
    ASSERT_TRUE(window);
    EXPECT_EQ(window->minY(), ring.maxY());  // the shadow ends where the ring's area begins
    EXPECT_EQ(window->midX(), kFullHD.midX());

    const Rect prompt{660, 480, 600, 590};  // leaves room only at the bottom
    const auto below = CardPlacement::windowFrame(kFullHD, std::array{prompt});
    ASSERT_TRUE(below);
    EXPECT_EQ(cardIn(*below).maxY(), prompt.minY() - kCardShadowMargin);

    // An area beside the card is no reason to move.
    EXPECT_EQ(CardPlacement::windowFrame(kFullHD, std::array{Rect{0, 0, 600, 1080}}),
              CardPlacement::windowFrame(kFullHD));
}

TEST(CardPlacement, NeverCoversAnAreaAndNeverLeavesTheScreen) {
    for (double width = 640; width <= 3840; width += 160)
        for (double height = 400; height <= 2160; height += 40) {
            const Rect screen{-300, 77, width, height};
            const std::array areas{ringIn(screen),
                                   Rect{screen.midX() - 150, screen.minY() + 40, 300, 60}};
            const auto window = CardPlacement::windowFrame(screen, areas);
            if (!window) {
                EXPECT_LT(height, 900) << width << " x " << height;
                continue;
            }
            const Rect card = cardIn(*window);
            for (const Rect& area : areas) EXPECT_FALSE(card.grownBy(11.9).intersects(area));
            EXPECT_GE(card.minY(), screen.minY());
            EXPECT_LE(card.maxY(), screen.maxY());
        }
}

TEST(CardPlacement, SmallScreensGetANarrowerMarginOrNoCard) {
    const Rect screen{0, 0, 1280, 720};
    const auto window = CardPlacement::windowFrame(screen, std::array{ringIn(screen)});
    ASSERT_TRUE(window);
    EXPECT_EQ(cardIn(*window).minY(), ringIn(screen).maxY() + 24);
    const Rect tiny{0, 0, 800, 480};
    EXPECT_FALSE(CardPlacement::windowFrame(tiny, std::array{ringIn(tiny)}));
}

}  // namespace
}  // namespace quorvane

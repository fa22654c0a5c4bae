// Parts of a card, drawn one after the other as in a running card, compared with the whole card.
#include "platform/linux/card/CardPainter.hpp"

#include <gtest/gtest.h>

#include "drawing/SceneChanges.hpp"

namespace quorvane {
namespace {

constexpr CardStyle kStyle{{400, 222}, 52, 30, 1, 0.25, 22, 8};

struct Card {
    Pixels pixels;
    CairoSurface surface = surfaceOver(pixels);
    CardPainter painter;

    explicit Card(double scale)
        : pixels{static_cast<int>(504 * scale), static_cast<int>(326 * scale)},
          painter{kStyle, scale, nullptr} {
        Pixels backdrop{pixels.width, pixels.height};
        for (int y = 0; y < backdrop.height; ++y)
            for (int x = 0; x < backdrop.width; ++x)
                backdrop.row(y)[x] = kOpaqueBlack | static_cast<std::uint32_t>(x / 4 << 16 | y / 3);
        painter.setBackdrop(backdrop);
    }
};

TEST(CardPainter, PartsLookAsInTheWholeCard) {
    for (const auto& [isRightToLeft, scale] : {std::pair{false, 2.0}, {true, 2}, {true, 1.3}}) {
        // A title that scrolls under a mark, beside a heart and over a second line.
        TextNode first{.frame = {86, 17, 248, 28},
                       .text = "Ждём 雨 and jÄgqy, a 🌧 longer way than there is room",
                       .font = {17, FontStyle::Weight::semibold},
                       .color = Color::white()};
        Scene last;
        Card card{scale}, inPlace{scale}, whole{scale};
        for (const auto& [offset, mark] :
             {std::pair{-12.0, 0.0}, {-10.5, 0}, {338.5, 0}, {339, 0.5}, {429, 0}}) {
            first.scroll = TextNode::Scroll{offset, 40, 12};
            TextNode second = first;
            second.frame.y += 22;
            second.scroll->offset += 100;
            Scene scene;
            scene.nodes = {ShapeNode{{200, 18, 20, 26}, 4, Color::white(mark)}, first, second,
                           SymbolNode{{322, 20, 44, 44}, "heart.fill", 20, Color::white()}};
            scene.isRightToLeft = isRightToLeft;
            const auto inkOf = [&](const TextNode& text) { return card.painter.inkOf(text); };
            const auto parts = card.painter.pixelsOf(changedAreas(last, scene, inkOf));
            whole.painter.draw(whole.surface.get(), {.scene = scene});
            if (last.nodes.empty()) {
                card.painter.draw(card.surface.get(), {.scene = scene});
                inPlace.painter.draw(inPlace.surface.get(), {.scene = scene});
            } else {
                card.painter.drawParts(card.surface.get(), {.scene = scene}, parts);
                inPlace.painter.drawPartsInPlace(inPlace.surface.get(), {.scene = scene}, parts);
            }
            EXPECT_TRUE(card.pixels == whole.pixels) << offset << isRightToLeft << scale;
            EXPECT_TRUE(inPlace.pixels == whole.pixels) << offset << isRightToLeft << scale;
            last = scene;
        }
    }
}

}  // namespace
}  // namespace quorvane

// Parts of a card drawn one after the other, as a running card draws them, beside the whole of it.
#include "platform/linux/card/CardPainter.hpp"

#include <gtest/gtest.h>

#include "drawing/SceneChanges.hpp"

namespace quorvane {
namespace {

constexpr CardStyle kStyle{{400, 222}, 52, 30, 1, 0.25, 22, 8};
constexpr double kScale = 2;

Pixels backdrop() {
    Pixels pixels{static_cast<int>(504 * kScale), static_cast<int>(326 * kScale)};
    for (int y = 0; y < pixels.height; ++y)
        for (int x = 0; x < pixels.width; ++x)
            pixels.row(y)[x] = kOpaqueBlack | static_cast<std::uint32_t>(x / 4 << 16 | y / 3);
    return pixels;
}

class Card {
public:
    Card() { painter_.setBackdrop(backdrop()); }

    void drawWhole(const Scene& scene) {
        painter_.draw(surface_.get(), {.scene = scene, .transform = {}});
        last_ = scene;
    }
    // Returns how many pixels were drawn.
    int follow(const Scene& scene) {
        std::vector<PixelRect> parts;
        for (const Rect& area : changedAreas(last_, scene))
            parts.push_back(painter_.pixelsOf(area));
        last_ = scene;
        int count = 0;
        for (const PixelRect& part :
             painter_.drawParts(surface_.get(), {.scene = scene, .transform = {}}, parts))
            count += part.width * part.height;
        return count;
    }
    // The largest difference of any channel.
    int differenceFrom(const Card& other) const {
        const auto [begin, end] = bytes();
        int most = 0;
        for (auto [one, two] = std::pair{begin, other.bytes().first}; one != end; ++one, ++two)
            most = std::max(most, std::abs(*one - *two));
        return most;
    }

private:
    std::pair<const unsigned char*, const unsigned char*> bytes() const {
        cairo_surface_flush(surface_.get());
        const unsigned char* const data = cairo_image_surface_get_data(surface_.get());
        return {data, data + std::ptrdiff_t{cairo_image_surface_get_stride(surface_.get())} *
                                 cairo_image_surface_get_height(surface_.get())};
    }

    CardPainter painter_{kStyle, kScale, nullptr};
    CairoSurface surface_{cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1008, 652)};
    Scene last_{};
};

// A title that scrolls between a picture's place and a heart, over a second line.
Scene sceneAt(double offset, const std::string& title, bool isRightToLeft, bool isBothScrolling) {
    TextNode first{.frame = {86, 17, 248, 28},
                   .text = title,
                   .font = {17, FontStyle::Weight::semibold},
                   .color = Color::white()};
    first.scroll = TextNode::Scroll{offset - 12, 40, 12};
    TextNode second = first;
    second.frame.y += 22;
    second.color = {1, 0.8, 0.2, 0.58};
    if (isBothScrolling)
        second.scroll->offset += 100;
    else
        second.scroll.reset();
    Scene scene;
    scene.nodes = {first,
                   second,
                   SymbolNode{{322, 20, 44, 44}, "heart.fill", 20, Color::white()},
                   GroupBegin{},
                   ShapeNode{{20, 180, 300, 6}, 3, Color::white(0.25)},
                   GroupEnd{}};
    scene.isRightToLeft = isRightToLeft;
    return scene;
}

constexpr char kTitle[] = "A Slow Parade of Clouds over the Long Way Home";

TEST(CardPainter, AScrollingLineLooksAsInTheWholeCard) {
    for (const std::string title :
         {kTitle, "Ждём 雨 and jÄgqy, a 🌧 longer way than there is room"})
        for (const bool isRightToLeft : {false, true})
            for (const bool isBothScrolling : {false, true}) {
                Card card;
                card.drawWhole(sceneAt(0, title, isRightToLeft, isBothScrolling));
                Card whole;
                for (const double offset : {1.5, 350.5, 441.0}) {
                    const Scene scene = sceneAt(offset, title, isRightToLeft, isBothScrolling);
                    card.follow(scene);
                    whole.drawWhole(scene);
                    EXPECT_LE(card.differenceFrom(whole), 3)
                        << title << " at " << offset << (isRightToLeft ? ", mirrored" : "")
                        << (isBothScrolling ? ", both" : "");
                }
            }
}

TEST(CardPainter, AScrollingLineIsDrawnAloneUntilSomethingElseChanges) {
    // Inside of the line's own part, which so stays the same one, and higher than its letters.
    const auto scene = [](double offset, double markAlpha, std::size_t markPlace = 0,
                          const char* title = kTitle) {
        Scene made = sceneAt(offset, title, false, false);
        made.nodes.insert(made.nodes.begin() + static_cast<std::ptrdiff_t>(markPlace),
                          ShapeNode{{200, 18, 20, 26}, 4, Color::white(markAlpha)});
        return made;
    };
    Card card;
    card.drawWhole(scene(1, 0));
    const int first = card.follow(scene(2, 0));
    EXPECT_LT(card.follow(scene(3, 0)), first) << "only rows with letters";

    Card whole;
    for (const Scene& next :
         {scene(4, 0.5), scene(5, 0), scene(6, 0.5, 1), scene(7, 0.5, 1), scene(8, 0),
          scene(9, 0, 0, "Another one too long for its field, too"), scene(10, 0)}) {
        card.follow(next);
        whole.drawWhole(next);
        EXPECT_LE(card.differenceFrom(whole), 3);
    }
}

}  // namespace
}  // namespace quorvane

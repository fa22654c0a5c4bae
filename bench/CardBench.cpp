// Times the drawing of the card at two pixels a point, in memory and without an X server: a frame
// in which only a marquee moves, the whole card with and without cached text layouts, and the blur
// of its backdrop.

#include <algorithm>
#include <cmath>

#include "AddOnKit/card/PlayerView.hpp"
#include "Quorvane_Lock_Screen/GlassCardView.hpp"
#include "bench/Measuring.hpp"
#include "bench/Report.hpp"
#include "bench/SampleStates.hpp"
#include "drawing/SceneChanges.hpp"
#include "drawing/pictures/EncodedImage.hpp"
#include "drawing/pictures/GlassMaterial.hpp"
#include "platform/linux/card/CardPainter.hpp"
#include "tools/Files.hpp"

namespace quorvane {
namespace {

constexpr int kRounds = 31;
constexpr int kFramesPerRound = 20;  // in a row, as a marquee draws them
constexpr int kRedrawsPerRound = 5;
constexpr double kScale = 2;
// Limits as multiples of one fill's time: 0.6, 1.6 and 2 ms on the machine for which they were set.
constexpr double kRedrawFills = 3;
constexpr double kFirstDrawFills = 8.5;
constexpr double kGlassFills = 13.5;
constexpr double kFramesPerSecond = 60;
const CardStyle kStyle = GlassCardView::style();

// Soft colours and hard edges, as in wallpapers.
Pixels makeBackdrop() {
    Pixels pixels{
        static_cast<int>(std::lround((kStyle.card.width + 2 * kStyle.shadowMargin) * kScale)),
        static_cast<int>(std::lround((kStyle.card.height + 2 * kStyle.shadowMargin) * kScale))};
    for (int y = 0; y < pixels.height; ++y)
        for (int x = 0; x < pixels.width; ++x)
            pixels.row(y)[x] = kOpaqueBlack |
                               static_cast<std::uint32_t>(x * 255 / pixels.width) << 16 |
                               static_cast<std::uint32_t>(y * 255 / pixels.height) << 8 |
                               ((x / 40 + y / 40) % 2 == 0 ? 0x20U : 0xa0U);
    return pixels;
}

// A playing track with real artwork and a title too long for its field.
class Card {
public:
    Card() {
        const auto artwork = readFile(DEMO_FOLDER "/clouds.jpg");
        if (!artwork) die("the demo's artwork");
        QuorvanePlayerState state = sampleState(SharedBytes{copyOf(*artwork)});
        state.track->title = "A Slow Parade of Clouds over the Long Way Home";
        model_.apply(state);
    }

    Scene scene(double marqueeTime) {
        environment_.marqueeFrozenTime = marqueeTime;
        return PlayerView{model_, environment_}.scene({}, {Instant{}, date_}).scene;
    }

private:
    const WallTime date_ = sampleState(sampleArtwork(1, 1)).timestamp;
    PlayerModel model_{[this] { return date_; },
                       [](ByteView encoded) -> ImageRef {
                           return std::make_shared<EncodedImage>(copyOf(encoded));
                       }};
    PlayerEnvironment environment_{.localized = [](const std::string& key) { return key; },
                                   .measureText = makeMeasureText(),
                                   .scale = kScale,
                                   .playerFrozenDate = date_};
};

struct Bench {
    Card card{};
    const Pixels backdrop = makeBackdrop();
    Pixels filled{backdrop.width, backdrop.height};
    std::shared_ptr<PictureCache> pictures = std::make_shared<PictureCache>();
    CairoSurface target{
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, backdrop.width, backdrop.height)};
    CardPainter painter = makePainter();

    CardPainter makePainter() const {
        CardPainter made{kStyle, kScale, pictures};
        made.setBackdrop(backdrop);
        made.makeChrome();
        return made;
    }
};

// The marquee moves two pixels between frames, so each frame shows another part of the row.
double marqueeFrame(Bench& bench, int number) {
    const double time = 4 + number / kFramesPerSecond;
    const Scene before = bench.card.scene(time);
    const Scene after = bench.card.scene(time + 1 / kFramesPerSecond);
    const auto inkOf = [&](const TextNode& text) { return bench.painter.inkOf(text); };
    const auto parts = bench.painter.pixelsOf(changedAreas(before, after, inkOf));
    if (parts.empty()) std::abort();
    return microsecondsOf([&] {
        bench.painter.drawParts(bench.target.get(),
                                {.scene = after, .transform = Transform::identity()}, parts);
    });
}

double glassOnce(const Bench& bench) {
    static const PixelRect card = pixelsTouchedBy(scaledBy(
        {kStyle.shadowMargin, kStyle.shadowMargin, kStyle.card.width, kStyle.card.height}, kScale));
    return microsecondsOf([&] { makeGlass(bench.backdrop, card, kStyle.textBottom, kScale); });
}

// The lower bound for drawing a card and its shadow: a store to each of its pixels.
double fill(Bench& bench) {
    return microsecondsOf([&] {
        std::ranges::fill(bench.filled.values, kOpaqueBlack);
        asm volatile("" : : "r"(bench.filled.values.data()) : "memory");
    });
}

void tellFills(const char* what, const Times& own, const Times& fills, double limit,
               const char* reason) {
    const double ratio = own.median() / fills.median();
    report({.what = what,
            .ratio = ratio,
            .against = "a fill of as many pixels",
            .figure = timeText(own.median()) + " to " + timeText(fills.median()),
            .goal = "≤ " + numberText(limit, " ×"),
            .isMet = ratio <= limit,
            .reason = reason});
}

void drawing(Bench& bench) {
    Times marquee, kept, fresh, glass, fills;
    const Scene scene = bench.card.scene(4);
    const StageLook look{.scene = scene, .transform = Transform::identity()};
    bench.painter.draw(bench.target.get(), look);
    for (int round = 0; round < kRounds; ++round) {
        for (int frame = 0; frame < kFramesPerRound; ++frame)
            marquee.add(marqueeFrame(bench, round * kFramesPerRound + frame));
        for (int i = 0; i < kRedrawsPerRound; ++i) {
            kept.add(microsecondsOf([&] { bench.painter.draw(bench.target.get(), look); }));
            fills.add(fill(bench));
            glass.add(glassOnce(bench));
        }
        CardPainter painter = bench.makePainter();
        fresh.add(microsecondsOf([&] { painter.draw(bench.target.get(), look); }));
    }
    beginReport("Drawing the card (400 × 222 points at two pixels a point, no X server)");
    const double cheaper = kept.median() / marquee.median();
    report({.what = "a frame in which a marquee moves",
            .ratio = cheaper,
            .against = "cheaper than the whole card",
            .figure = timeText(marquee.median()),
            .goal = "≥ 15 ×",
            .isMet = cheaper >= 15,
            .reason = "the whole card is drawn twice as fast as when this goal was set"});
    tellFills("the whole card and its shadow, layouts kept", kept, fills, kRedrawFills,
              "it mixes most pixels several times");
    tellFills("the whole card and its shadow, drawn for the first time", fresh, fills,
              kFirstDrawFills, "it also lays out the lines and fills symbols from their outlines");
    tellFills("the glass: reduced, blurred and toned, once a backdrop", glass, fills, kGlassFills,
              "it adds up the light of every pixel and limits it at each place under the card");
}

int runBench() {
    pin(0);
    Bench bench;
    drawing(bench);
    return 0;
}

}  // namespace
}  // namespace quorvane

int main() { return quorvane::runBench(); }

#include "AddOnKit/card/PlayerView.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "AddOnKit/card/PlayerGeometry.hpp"
#include "AddOnKit/card/PlayerLayout.hpp"
#include "AddOnKit/card/TimeFormatting.hpp"
#include "tests/AddOnKit/player/PlayingModel.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using ID = SceneControl::ID;

constexpr Rect kCard{0, 0, PlayerLayout::kCardWidth, PlayerLayout::kCardHeight};

struct Fixture : PlayingModel {
    PlayerInteraction interaction;
    PlayerEnvironment environment{
        .localized = [](const std::string& key) { return "<" + key + ">"; },
        .measureText = measure};

    PlayerScene made() {
        return PlayerView{model, environment}.scene(interaction,
                                                    {clock.clock().now(), clock.wallClock()()});
    }
    Scene scene() { return made().scene; }
};

// The pictures, symbols and texts in order: "image heart Reed".
std::string drawn(const Scene& scene) {
    std::string words;
    for (const SceneNode& node : scene.nodes) {
        if (std::holds_alternative<ImageNode>(node)) words += "image ";
        if (const auto* text = std::get_if<TextNode>(&node)) words += text->text + " ";
        if (const auto* symbol = std::get_if<SymbolNode>(&node))
            words += std::string{symbol->name} + " ";
    }
    return words;
}

std::string labels(const Scene& scene) {
    std::string words;
    for (const SceneControl& one : scene.controls) words += one.label + one.value + " ";
    return words;
}

TEST(PlayerView, ShowsThePlayersStateWithItsLabels) {
    Fixture f;
    EXPECT_EQ(drawn(f.scene()),
              "image Reed Marsh heart 0:30 \u22122:49 backward.fill pause.fill forward.fill "
              "speaker.fill speaker.wave.3.fill ");
    EXPECT_EQ(labels(f.scene()),
              "<Artwork> Reed Marsh <Love> <Playback Position>0:30 \u22122:49 "
              "<Previous Track> <Pause> <Next Track> <Volume>50 % ");
    EXPECT_EQ(all<ImageNode>(f.scene()).at(0).image, f.model.artwork.get());
    EXPECT_EQ(control(f.scene(), ID::progress)->maximum, 200);

    f.state.track->title = "Re\ned";
    f.state.track->artworkData.reset();
    f.state.track->isLiveStream = true;
    f.state.isLoved = true;
    f.apply(XPCPlayerState::paused);
    EXPECT_EQ(drawn(f.scene()),
              "music.note Re ed Marsh heart.fill 0:30 \u2212\u2013:\u2013\u2013 backward.fill "
              "play.fill forward.fill speaker.fill speaker.wave.3.fill ");
    EXPECT_EQ(labels(f.scene()),
              "<Artwork> Re ed Marsh <Remove Love> <Playback Position>0:30 <Previous Track> "
              "<Play> <Next Track> <Volume>50 % ");
    EXPECT_EQ(control(f.scene(), ID::progress)->maximum, 0);
}

TEST(PlayerView, FillsTheBarByWholePixelsOfThePosition) {
    Fixture f;
    const Rect track = control(f.scene(), ID::progress)->frame;
    const auto filled = [&] {
        const auto shapes = all<ShapeNode>(f.scene());
        return std::next(std::ranges::find(shapes, track, &ShapeNode::frame))->frame.maxX() -
               track.x;
    };
    // The bar moves together with the times, even when it moves slowly.
    EXPECT_EQ(filled(), std::floor(track.width * 30 / 200));
    f.environment.scale = 2;
    EXPECT_EQ(filled(), std::floor(2 * track.width * 30 / 200) / 2);
    f.clock.advance(500s);
    EXPECT_EQ(filled(), track.width);
    EXPECT_TRUE(drawn(f.scene()).contains("3:20 \u22120:00"));
    EXPECT_FALSE(f.scene().nextChange);
    f.environment.playerFrozenDate = ManualClock::kStart + 10s;
    EXPECT_TRUE(drawn(f.scene()).contains("0:40"));
    EXPECT_FALSE(f.scene().nextChange);
}

TEST(PlayerView, HasItsLayout) {
    const PlayerGeometry g = PlayerGeometry::make(true, false);
    const std::pair<Rect, Rect> rows[] = {
        {g.artwork, {20, 20, 64, 64}},    {g.title, {98, 17, 250, 28}},
        {g.titleOnly, {98, 28, 250, 28}}, {g.artist, {98, 39, 250, 28}},
        {g.heart, {348, 20, 44, 44}},     {g.progress, {98, 80, 282, 4}},
        {g.elapsed, {98, 86, 80, 20}},    {g.remaining, {300, 86, 80, 20}},
        {g.previous, {106, 124, 44, 44}}, {g.playPause, {176, 122, 48, 48}},
        {g.next, {250, 124, 44, 44}},     {g.quietSpeaker, {20, 183, 22, 22}},
        {g.volume, {50, 182, 300, 24}},   {g.loudSpeaker, {358, 183, 22, 22}}};
    for (const auto& [rect, expected] : rows) EXPECT_EQ(describe(rect), describe(expected));
    EXPECT_EQ(PlayerGeometry::make(false, false).title, (Rect{98, 17, 282, 28}));
}

TEST(PlayerView, ShowsTimesAsText) {
    const std::pair<double, const char*> rows[] = {
        {59.9, "0:59"},      {60, "1:00"},          {3599.999, "59:59"}, {3600, "1:00:00"},
        {3661.5, "1:01:01"}, {86'400, "24:00:00"},  {-3, "0:00"},        {INFINITY, "0:00"},
        {-INFINITY, "0:00"}, {std::nan(""), "0:00"}};
    for (const auto& [seconds, text] : rows) EXPECT_EQ(TimeFormatting::text(seconds), text);
    EXPECT_FALSE(TimeFormatting::text(1e300).empty());
    EXPECT_EQ(TimeFormatting::remaining(200, 10.5), "\u22123:09");
}

TEST(PlayerView, MirrorsAllButTheTransport) {
    Fixture f;
    const Scene left = f.scene();
    f.environment.isRightToLeft = true;
    const Scene right = f.scene();
    EXPECT_TRUE(right.isRightToLeft);
    ASSERT_EQ(left.controls.size(), right.controls.size());
    for (const SceneControl& one : left.controls) {
        const Rect other = control(right, one.id)->frame;
        const bool stays = one.id == ID::previous || one.id == ID::playPause || one.id == ID::next;
        EXPECT_EQ(other.x, stays ? one.frame.x : kCard.width - one.frame.maxX()) << one.label;
        EXPECT_EQ(other.y, one.frame.y);
    }
    EXPECT_GT(all<TextNode>(right).at(2).frame.x, all<TextNode>(right).at(3).frame.x);
}

TEST(PlayerView, FadesFromTheOldArtworkToTheNew) {
    Fixture f;
    const ImageRef old = std::make_shared<Image>();
    f.interaction.oldArtwork = old;
    f.interaction.artworkChange = Transition{0.25};
    Scene scene = f.scene();
    // The new picture covers the old one, which stays opaque below it.
    EXPECT_EQ(all<ImageNode>(scene).at(0).image, old);
    EXPECT_EQ(all<ImageNode>(scene).at(1).image, f.model.artwork.get());
    EXPECT_EQ(all<GroupBegin>(scene).at(0).opacity, 0.25);
    EXPECT_EQ(all<GroupBegin>(scene).size(), 1u);
    EXPECT_EQ(all<GroupEnd>(scene).size(), 1u);

    f.state.track->artworkData.reset();
    f.apply();
    scene = f.scene();
    EXPECT_EQ(all<GroupBegin>(scene).at(0).opacity, 0.75);
    EXPECT_EQ(all<ImageNode>(scene).at(0).image, old);
    EXPECT_EQ(all<GroupBegin>(scene).at(1).opacity, 0.25);
    EXPECT_EQ(all<GroupEnd>(scene).size(), 2u);
}

// The number of changes of a whole track. The scene stays equal until its next change and differs
// right after it.
int changesOver(double duration, Duration lateness = 2ms) {
    Fixture f;
    f.state.track->duration = duration;
    f.state.playerPosition = 0.1;
    f.apply();
    int changes = 0;
    for (Scene before = f.scene(); before.nextChange && changes < 5000; ++changes) {
        EXPECT_GE(*before.nextChange, 1ms);
        f.clock.advance(*before.nextChange - lateness);
        EXPECT_EQ(f.scene(), before) << "after " << changes;
        f.clock.advance(lateness);
        const Scene after = f.scene();
        EXPECT_FALSE(after == before) << "after " << changes;
        before = after;
    }
    return changes;
}

TEST(PlayerViewNextChange, AScrolledSceneEqualsANewOne) {
    Fixture f;
    f.state.track->title = std::string(60, 'W');
    f.state.track->artist = std::string(50, 'M');
    f.apply(XPCPlayerState::paused);
    const auto now = [&] { return f.clock.clock().now(); };
    f.interaction.artistStart = now();
    f.interaction.titleStart = now() - 700ms;
    PlayerScene kept = f.made();
    for (int frame = 0; frame < 2000; ++frame) {
        f.clock.advance(*kept.scene.nextChange);
        ASSERT_TRUE(kept.holds(now()));
        kept.scroll(now());
        ASSERT_EQ(kept.scene, f.scene()) << frame;
        ASSERT_EQ(kept.scene.nextChange, f.scene().nextChange) << frame;
    }
    // A text that the stage moves needs no frames.
    f.environment.widestMovedText = 599;
    EXPECT_EQ(f.made().marquees.size(), 1u);
    f.environment.widestMovedText = 600;
    EXPECT_EQ(all<TextNode>(f.scene()).at(0).scroll->motion, (TextNode::Motion{2.5, 32}));
    EXPECT_FALSE(f.scene().nextChange);
}

TEST(PlayerViewNextChange, IsExactOverAWholeTrack) {
    // Each pixel, and each second of both times unless it coincides with a pixel.
    const int ofShort = changesOver(31.37);
    EXPECT_GT(ofShort, 282);
    EXPECT_LE(ofShort, 282 + 2 * 32);
    // The bar's pixels coincide with the seconds: one wake-up each.
    EXPECT_EQ(changesOver(214), 214);
    // The remaining time changes a moment after the elapsed time: one wake-up for both.
    EXPECT_EQ(changesOver(214.03, 35ms), 214);
}

}  // namespace
}  // namespace quorvane

#include "AddOnKit/card/PlayerCard.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include <algorithm>

#include "tests/AddOnKit/card/PlayingModel.hpp"
#include "tests/support/FakeCardWindows.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using ID = SceneControl::ID;
using Kind = PointerEvent::Kind;

// A paused player, so that nothing moves by itself.
struct Fixture : PlayingModel {
    std::vector<std::string> actions;
    std::shared_ptr<FakeStage> stage = std::make_shared<FakeStage>();
    bool reducesMotion = false;
    std::unique_ptr<PlayerCard> card;

    Fixture() {
        state.playerState = XPCPlayerState::paused;
        apply();
        const auto note = [this](const char* name) {
            return [this, name] { actions.push_back(name); };
        };
        card = std::make_unique<PlayerCard>(
            model,
            PlayerActions{.playPause = note("playPause"),
                          .next = note("next"),
                          .previous = note("previous"),
                          .toggleLove = note("toggleLove"),
                          .setVolume =
                              [this](std::int64_t volume) {
                                  actions.push_back("volume " + std::to_string(volume));
                              },
                          .endVolume = note("endVolume")},
            PlayerCardEnvironment{.clock = clock.clock(),
                                  .wallClock = clock.wallClock(),
                                  .measureText = measure,
                                  .reducesMotion = [this] { return reducesMotion; }});
        card->attach(stage);
    }

    const Scene& scene() const { return stage->scenes.back(); }
    Rect frame(ID id) const {
        return std::ranges::find(scene().controls, id, &SceneControl::id)->frame;
    }
    Point middle(ID id) const { return {frame(id).midX(), frame(id).midY()}; }
    void pointer(Kind kind, Point location) { stage->events.pointer({kind, location}); }
    void tap(ID id) {
        pointer(Kind::down, middle(id));
        pointer(Kind::up, middle(id));
    }
    // How strongly the button's highlight shows, 0 to 1, once it has come to rest.
    double highlight() {
        clock.advance(1s);
        for (const SceneNode& node : scene().nodes)
            if (const auto* group = std::get_if<GroupBegin>(&node))
                return (1 - group->transform.scale) / 0.1;
        return 0;
    }
    void nothingHappens(Duration duration) {
        const std::size_t drawn = stage->scenes.size();
        clock.advance(duration);
        EXPECT_EQ(stage->scenes.size(), drawn);
        EXPECT_EQ(clock.pendingTimers(), 0u);
    }
};

struct ShownCard : Fixture {
    ShownCard() { card->setShown(true); }
};

constexpr Point kNowhere{2, 2};

TEST(PlayerCard, DrawsNothingAndKeepsNoTimerWhileNotShown) {
    Fixture f;
    f.model.togglePlayPause();
    f.nothingHappens(10s);
    EXPECT_TRUE(f.stage->scenes.empty());

    f.card->setShown(true);
    EXPECT_EQ(f.stage->scenes.size(), 1u);
    EXPECT_EQ(f.clock.pendingTimers(), 1u);
    f.clock.advance(10s);
    const std::size_t drawn = f.stage->scenes.size();
    EXPECT_GT(drawn, 10u);

    f.card->setShown(false);
    EXPECT_EQ(f.clock.pendingTimers(), 0u);
    f.model.toggleLove();
    f.nothingHappens(10s);
    f.tap(ID::next);
    f.stage->events.accessibility(ID::next, AccessibilityAction::press);
    EXPECT_TRUE(f.actions.empty());
}

TEST(PlayerCard, DrawsOnceForAllChangesOfAPassAndNotForNone) {
    ShownCard f;
    f.nothingHappens(60s);
    f.state.track->title = "Rush";
    f.state.track->artist = "Sedge";
    f.state.volume = 70;
    f.apply();
    EXPECT_EQ(f.stage->scenes.size(), 1u);
    f.clock.advance(0s);
    EXPECT_EQ(f.stage->scenes.size(), 2u);
    f.model.isLiveStream.set(true);  // not seen on the card
    f.nothingHappens(60s);
}

TEST(PlayerCard, FiresWhenAPressIsLetGoInsideItsButton) {
    ShownCard f;
    for (const ID id : {ID::previous, ID::playPause, ID::next, ID::love}) f.tap(id);
    EXPECT_EQ(f.actions, (std::vector<std::string>{"previous", "playPause", "next", "toggleLove"}));
    EXPECT_EQ(f.highlight(), 0);
    for (const ID id : {ID::title, ID::artwork, ID::progress}) f.tap(id);
    f.pointer(Kind::down, kNowhere);
    f.pointer(Kind::up, f.middle(ID::next));
    EXPECT_EQ(f.actions.size(), 4u);
}

TEST(PlayerCard, FollowsAPressOffItsButtonAndBack) {
    ShownCard f;
    f.pointer(Kind::down, f.middle(ID::next));
    EXPECT_DOUBLE_EQ(f.highlight(), 1);
    f.nothingHappens(10s);
    f.pointer(Kind::dragged, f.middle(ID::playPause));
    EXPECT_EQ(f.highlight(), 0);
    f.pointer(Kind::dragged, f.middle(ID::next));
    EXPECT_DOUBLE_EQ(f.highlight(), 1);
    f.pointer(Kind::dragged, kNowhere);
    f.pointer(Kind::up, kNowhere);
    EXPECT_EQ(f.highlight(), 0);
    EXPECT_TRUE(f.actions.empty());

    f.pointer(Kind::down, f.middle(ID::next));
    f.pointer(Kind::cancelled, f.middle(ID::next));
    f.pointer(Kind::up, f.middle(ID::next));
    EXPECT_EQ(f.highlight(), 0);
    EXPECT_TRUE(f.actions.empty());

    f.pointer(Kind::down, f.middle(ID::next));
    f.pointer(Kind::dragged, kNowhere);
    f.pointer(Kind::up, f.middle(ID::next));
    EXPECT_EQ(f.actions, std::vector<std::string>{"next"});
}

TEST(PlayerCard, AnimatesAPressInFramesAndThenSleeps) {
    ShownCard f;
    const std::size_t drawn = f.stage->scenes.size();
    f.pointer(Kind::down, f.middle(ID::next));
    f.clock.advance(200ms);
    const std::size_t frames = f.stage->scenes.size() - drawn;
    EXPECT_GE(frames, 4u);
    EXPECT_LE(frames, 7u);
    f.nothingHappens(60s);
}

TEST(PlayerCard, DropsAPressWhoseButtonIsGone) {
    ShownCard f;
    const Point heart = f.middle(ID::love);
    f.pointer(Kind::down, heart);
    f.state.playerType = XPCPlayerType::spotify;
    f.apply();
    f.clock.advance(0s);
    f.pointer(Kind::dragged, heart);
    f.pointer(Kind::up, heart);
    EXPECT_TRUE(f.actions.empty());
    f.clock.advance(1s);
    f.nothingHappens(60s);
}

TEST(PlayerCard, DragsTheVolumeAlsoOutsideTheSlider) {
    ShownCard f;
    const Rect slider = f.frame(ID::volume);
    f.pointer(Kind::down, {slider.x + 0.305 * slider.width, slider.y + 1});
    f.pointer(Kind::dragged, {slider.x + 0.405 * slider.width, -300});
    f.clock.advance(1s);
    EXPECT_TRUE(f.model.isDraggingVolume.get());
    f.pointer(Kind::dragged, {5000, 5000});
    f.pointer(Kind::up, {5000, 5000});
    EXPECT_EQ(f.actions,
              (std::vector<std::string>{"volume 30", "volume 40", "volume 100", "endVolume"}));
    EXPECT_FALSE(f.model.isDraggingVolume.get());
    f.clock.advance(1s);
    f.nothingHappens(60s);
}

TEST(PlayerCard, EndsADragThatIsCancelledOrHidden) {
    ShownCard f;
    f.pointer(Kind::down, {f.frame(ID::volume).x + 1, f.middle(ID::volume).y});
    f.pointer(Kind::cancelled, kNowhere);
    EXPECT_EQ(f.actions, (std::vector<std::string>{"volume 0", "endVolume"}));
    EXPECT_FALSE(f.model.isDraggingVolume.get());

    f.pointer(Kind::down, f.middle(ID::volume));
    EXPECT_TRUE(f.model.isDraggingVolume.get());
    f.card->setShown(false);
    EXPECT_FALSE(f.model.isDraggingVolume.get());
    EXPECT_EQ(f.actions.back(), "endVolume");
    EXPECT_EQ(f.clock.pendingTimers(), 0u);

    f.card->setShown(true);
    f.pointer(Kind::up, f.middle(ID::volume));
    EXPECT_EQ(f.actions.size(), 4u);
}

TEST(PlayerCard, KeepsItsPictureWhileFrozenAndADragGoesOn) {
    ShownCard f;
    f.pointer(Kind::down, f.middle(ID::volume));
    f.clock.advance(1s);
    f.card->freeze();
    f.model.clear();
    f.nothingHappens(10s);
    EXPECT_TRUE(f.model.isDraggingVolume.get());
    const std::size_t drawn = f.stage->scenes.size();
    f.card->setShown(true);
    EXPECT_EQ(f.stage->scenes.size(), drawn + 1);
}

TEST(PlayerCard, ObeysAssistiveTechnology) {
    ShownCard f;
    const auto& ask = f.stage->events.accessibility;
    ask(ID::playPause, AccessibilityAction::press);
    ask(ID::love, AccessibilityAction::press);
    ask(ID::next, AccessibilityAction::increment);
    ask(ID::title, AccessibilityAction::press);
    ask(ID::volume, AccessibilityAction::increment);
    ask(ID::volume, AccessibilityAction::decrement);
    const auto& set = f.stage->events.accessibilityNumber;
    set(ID::volume, 31.7);
    set(ID::volume, 1e300);
    set(ID::volume, std::nan(""));
    set(ID::progress, 10);
    EXPECT_EQ(f.actions, (std::vector<std::string>{"playPause", "toggleLove", "volume 55",
                                                   "volume 50", "volume 31", "volume 100"}));
}

// A sent command may run the main loop, where the windows are closed.
TEST(PlayerCard, SurvivesBeingDestroyedByItsOwnActions) {
    for (const int what : {0, 1, 2}) {
        Fixture f;
        const auto destroy = [&f] { f.card.reset(); };
        PlayerActions actions;
        if (what == 0) actions.next = destroy;
        if (what == 1) actions.endVolume = destroy;
        if (what == 2) actions.setVolume = [destroy](std::int64_t) { destroy(); };
        f.card = std::make_unique<PlayerCard>(
            f.model, actions,
            PlayerCardEnvironment{.clock = f.clock.clock(), .wallClock = f.clock.wallClock()});
        f.card->attach(f.stage);
        f.card->setShown(true);
        const auto pointer = f.stage->events.pointer;
        const Point place = what == 0 ? f.middle(ID::next)
                                      : Point{f.frame(ID::volume).x + 1, f.middle(ID::volume).y};
        pointer({Kind::down, place});
        if (what == 0) pointer({Kind::up, place});
        if (what == 1) f.card->setShown(false);
        EXPECT_EQ(f.card, nullptr);
        EXPECT_FALSE(f.stage->events.pointer);
        f.model.toggleLove();
        f.nothingHappens(10s);
    }
}

// NaN where it does not scroll.
double titleOffset(const Scene& scene) {
    for (const SceneNode& node : scene.nodes)
        if (const auto* text = std::get_if<TextNode>(&node))
            return text->scroll ? text->scroll->offset : std::nan("");
    return 0;
}

TEST(PlayerCard, RestartsAMarqueeWhenItsTextChanges) {
    Fixture f;
    f.state.track->title = kLongTitle;
    f.apply();
    f.card->setShown(true);
    const double rest = titleOffset(f.scene());
    const std::size_t drawn = f.stage->scenes.size();
    f.clock.advance(2400ms);
    EXPECT_EQ(f.stage->scenes.size(), drawn);
    f.clock.advance(1100ms);
    EXPECT_NEAR(titleOffset(f.scene()) - rest, 32, 1.1);
    f.model.toggleLove();
    f.clock.advance(0s);
    EXPECT_NEAR(titleOffset(f.scene()) - rest, 32, 1.1);
    f.state.track->title = std::string{"Another "} + kLongTitle;
    f.apply();
    f.clock.advance(0s);
    EXPECT_EQ(titleOffset(f.scene()), rest);
    // The times go on beside it, and it stops where motion is to be reduced.
    f.state.playerState = XPCPlayerState::playing;
    f.apply();
    f.clock.advance(4s);
    const std::vector<SceneControl> controls = f.scene().controls;
    f.clock.advance(1s);
    EXPECT_NE(f.scene().controls, controls);
    EXPECT_NE(titleOffset(f.scene()), rest);
    f.reducesMotion = true;
    f.clock.advance(50ms);
    EXPECT_TRUE(std::isnan(titleOffset(f.scene())));
}

std::vector<ImageRef> imagesOf(const Scene& scene) {
    std::vector<ImageRef> images;
    for (const SceneNode& node : scene.nodes)
        if (const auto* const image = std::get_if<ImageNode>(&node)) images.push_back(image->image);
    return images;
}

// The opacity of the first group; 1 where there is none.
double fadeOf(const Scene& scene) {
    for (const SceneNode& node : scene.nodes)
        if (const auto* const group = std::get_if<GroupBegin>(&node)) return group->opacity;
    return 1;
}

TEST(PlayerCard, FadesToNewArtworkOnceItIsDecodedAndLetsGoOfTheOld) {
    ShownCard f;
    std::string late;
    f.model.onLateChange = [&](const PlayerModel::Change& change) { late += change.summary; };
    const std::weak_ptr<const Image> old = f.model.artwork.get();
    f.decoded = Image::State::arriving;
    for (const char* bytes : {"rushes", "sedges"}) {
        f.playWithArtwork(bytes);
        f.clock.advance(0s);
        EXPECT_EQ(imagesOf(f.scene()), (std::vector{old.lock(), f.model.artwork.get()}));
        EXPECT_EQ(fadeOf(f.scene()), 0);
        f.nothingHappens(60s);
    }
    f.model.artwork.get()->state().set(Image::State::ready);
    f.clock.advance(175ms);
    EXPECT_NEAR(fadeOf(f.scene()), 0.5, 0.1);
    f.clock.advance(1s);
    EXPECT_EQ(imagesOf(f.scene()), std::vector{f.model.artwork.get()});
    f.stage->scenes.erase(f.stage->scenes.begin(), f.stage->scenes.end() - 1);
    EXPECT_TRUE(old.expired());

    // The note takes the place of one that is undecodable, but not if another has come since.
    for (const char* bytes : {"reed", "broken"}) {
        f.playWithArtwork(bytes);
        f.clock.advance(0s);
    }
    imagesOf(f.stage->scenes.end()[-2]).back()->state().set(Image::State::undecodable);
    EXPECT_EQ(late, "");
    f.model.artwork.get()->state().set(Image::State::undecodable);
    EXPECT_EQ(late, "artwork 6 B (undecodable)");
    f.clock.advance(1s);
    EXPECT_TRUE(imagesOf(f.scene()).empty());

    // A card that has shown nothing yet does not fade from the note.
    f.playWithArtwork("reeds");
    f.card->setShown(false);
    f.card->setShown(true);
    EXPECT_EQ(fadeOf(f.scene()), 0);
    f.model.artwork.get()->state().set(Image::State::ready);
    f.clock.advance(0s);
    EXPECT_EQ(fadeOf(f.scene()), 1);
}

}  // namespace
}  // namespace quorvane

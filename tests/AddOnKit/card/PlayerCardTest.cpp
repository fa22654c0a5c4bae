#include "AddOnKit/card/PlayerCard.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/AddOnKit/player/PlayingModel.hpp"
#include "tests/support/FakeCardWindows.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using ID = SceneControl::ID;
using Kind = PointerEvent::Kind;
using Actions = std::vector<std::string>;

constexpr Point kNowhere{2, 2};

// A shown card with a paused player, so that nothing changes without input.
struct PlayerCardTest : testing::Test, PlayingModel {
    Actions actions;
    std::shared_ptr<FakeStage> stage = std::make_shared<FakeStage>();
    bool reducesMotion = false;
    std::unique_ptr<PlayerCard> card;

    PlayerCardTest() {
        apply(XPCPlayerState::paused);
        const auto note = [this](const char* name) {
            return [this, name] { actions.push_back(name); };
        };
        const auto setVolume = [this](std::int64_t volume) {
            actions.push_back("volume " + std::to_string(volume));
        };
        card = std::make_unique<PlayerCard>(
            model,
            PlayerActions{.playPause = note("playPause"),
                          .next = note("next"),
                          .previous = note("previous"),
                          .toggleLove = note("toggleLove"),
                          .setVolume = setVolume,
                          .endVolume = note("endVolume")},
            stage,
            PlayerCardEnvironment{.clock = clock.clock(),
                                  .wallClock = clock.wallClock(),
                                  .reducesMotion = [this] { return reducesMotion; },
                                  .isRightToLeft = [] { return false; },
                                  .view = {.localized = [](const std::string& key) { return key; },
                                           .measureText = measure}});
        card->setShown(true);
    }

    const Scene& scene() const { return stage->scenes.back(); }
    Rect frame(ID id) const { return control(scene(), id)->frame; }
    Point middle(ID id) const { return {frame(id).midX(), frame(id).midY()}; }
    void pointer(Kind kind, Point location) { stage->events.pointer({kind, location}); }
    void tap(ID id) {
        pointer(Kind::down, middle(id));
        pointer(Kind::up, middle(id));
    }
    // The strength of the button's highlight once its animation has ended, 0 to 1.
    double highlight() {
        clock.advance(1s);
        const auto groups = all<GroupBegin>(scene());
        return groups.empty() ? 0 : (1 - groups[0].transform.scale) / 0.1;
    }
    double artworkOpacity() const {
        const auto groups = all<GroupBegin>(scene());
        return groups.empty() ? 1 : groups[0].opacity;
    }
    double titleOffset() const { return all<TextNode>(scene()).at(0).scroll->offset; }
    void nothingHappens(Duration duration) {
        const std::size_t drawn = stage->scenes.size();
        clock.advance(duration);
        EXPECT_EQ(stage->scenes.size(), drawn);
        EXPECT_EQ(clock.pendingTimers(), 0u);
    }
};

TEST_F(PlayerCardTest, DrawsNothingAndKeepsNoTimerWhileNotShown) {
    model.togglePlayPause();
    clock.advance(10s);
    EXPECT_GT(stage->scenes.size(), 10u);
    EXPECT_EQ(clock.pendingTimers(), 1u);
    card->setShown(false);
    model.toggleLove();
    nothingHappens(10s);
    tap(ID::next);
    stage->events.accessibility(ID::next, AccessibilityAction::press);
    EXPECT_TRUE(actions.empty());
}

TEST_F(PlayerCardTest, DrawsOnceForAllChangesOfAPassAndNotForNone) {
    nothingHappens(60s);
    state.track->title = "Rush";
    state.volume = 70;
    apply();
    EXPECT_EQ(stage->scenes.size(), 1u);
    clock.advance(0s);
    EXPECT_EQ(stage->scenes.size(), 2u);
    model.isLiveStream.set(true);  // not visible on the card
    nothingHappens(60s);
}

TEST_F(PlayerCardTest, FiresWhenAPressIsReleasedInsideItsButton) {
    for (const ID id : {ID::previous, ID::playPause, ID::next, ID::love}) tap(id);
    EXPECT_EQ(actions, (Actions{"previous", "playPause", "next", "toggleLove"}));
    EXPECT_EQ(highlight(), 0);
    for (const ID id : {ID::title, ID::artwork, ID::progress}) tap(id);
    pointer(Kind::down, kNowhere);
    pointer(Kind::up, middle(ID::next));
    pointer(Kind::down, middle(ID::next));
    pointer(Kind::cancelled, middle(ID::next));
    EXPECT_EQ(highlight(), 0);
    pointer(Kind::up, middle(ID::next));
    EXPECT_EQ(actions.size(), 4u);
}

TEST_F(PlayerCardTest, FollowsAPressInFramesOffItsButtonAndBack) {
    const std::size_t drawn = stage->scenes.size();
    pointer(Kind::down, middle(ID::next));
    clock.advance(200ms);
    EXPECT_NEAR(static_cast<double>(stage->scenes.size() - drawn), 5.5, 1.5);
    EXPECT_DOUBLE_EQ(highlight(), 1);
    nothingHappens(10s);
    pointer(Kind::dragged, middle(ID::playPause));
    EXPECT_EQ(highlight(), 0);
    pointer(Kind::dragged, middle(ID::next));
    EXPECT_DOUBLE_EQ(highlight(), 1);
    pointer(Kind::up, kNowhere);
    EXPECT_EQ(highlight(), 0);
    EXPECT_TRUE(actions.empty());

    const Point heart = middle(ID::love);
    pointer(Kind::down, heart);
    state.playerType = XPCPlayerType::spotify;  // which has no heart
    apply();
    clock.advance(0s);
    pointer(Kind::dragged, heart);
    pointer(Kind::up, heart);
    EXPECT_TRUE(actions.empty());
}

TEST_F(PlayerCardTest, DragsTheVolumeAlsoOutsideTheSliderUntilReleasedCancelledOrHidden) {
    const Rect slider = frame(ID::volume);
    pointer(Kind::down, {slider.x + 0.305 * slider.width, slider.y + 1});
    pointer(Kind::dragged, {slider.x + 0.308 * slider.width, slider.y + 1});
    pointer(Kind::dragged, {slider.x + 0.405 * slider.width, -300});
    pointer(Kind::dragged, {5000, 5000});
    EXPECT_TRUE(model.isDraggingVolume.get());
    pointer(Kind::up, {5000, 5000});
    EXPECT_EQ(actions, (Actions{"volume 30", "volume 40", "volume 100", "endVolume"}));
    EXPECT_FALSE(model.isDraggingVolume.get());
    clock.advance(1s);
    nothingHappens(60s);

    pointer(Kind::down, {slider.x + 1, slider.midY()});
    pointer(Kind::cancelled, kNowhere);
    EXPECT_EQ(actions.back(), "endVolume");
    EXPECT_FALSE(model.isDraggingVolume.get());
    pointer(Kind::down, middle(ID::volume));
    EXPECT_EQ(actions.back(), "volume 50");
    card->setShown(false);
    EXPECT_FALSE(model.isDraggingVolume.get());
    EXPECT_EQ(clock.pendingTimers(), 0u);
    card->setShown(true);
    pointer(Kind::up, middle(ID::volume));
    EXPECT_EQ(actions.size(), 8u);
}

TEST_F(PlayerCardTest, KeepsItsPictureWhileFrozenAndADragGoesOn) {
    pointer(Kind::down, middle(ID::volume));
    clock.advance(1s);
    card->freeze();
    model.clear();
    nothingHappens(10s);
    EXPECT_TRUE(model.isDraggingVolume.get());
    const std::size_t drawn = stage->scenes.size();
    card->setShown(true);
    EXPECT_EQ(stage->scenes.size(), drawn + 1);
}

TEST_F(PlayerCardTest, ObeysAssistiveTechnology) {
    const auto& ask = stage->events.accessibility;
    ask(ID::playPause, AccessibilityAction::press);
    ask(ID::next, AccessibilityAction::increment);
    ask(ID::title, AccessibilityAction::press);
    ask(ID::volume, AccessibilityAction::increment);
    model.volume.set(3);
    ask(ID::volume, AccessibilityAction::decrement);
    const auto& set = stage->events.accessibilityNumber;
    for (const double number : {31.7, 1e300, std::nan("")}) set(ID::volume, number);
    set(ID::progress, 10);
    ask(ID::volume, AccessibilityAction::increment);
    ask(ID::volume, AccessibilityAction::press);
    EXPECT_EQ(actions, (Actions{"playPause", "volume 55", "volume 0", "volume 31", "volume 100",
                                "volume 100"}));
    EXPECT_EQ(apply(), "") << "within the volume's grace time";
}

TEST_F(PlayerCardTest, RestartsAMarqueeWhenItsTextChanges) {
    state.track->title = kLongTitle;
    apply();
    clock.advance(0s);
    const double rest = titleOffset();
    const std::size_t drawn = stage->scenes.size();
    clock.advance(2400ms);
    EXPECT_EQ(stage->scenes.size(), drawn);
    clock.advance(1100ms);
    model.toggleLove();
    clock.advance(0s);
    EXPECT_NEAR(titleOffset() - rest, 32, 1.1);
    state.track->title = std::string{"Another "} + kLongTitle;
    apply(XPCPlayerState::playing);
    clock.advance(0s);
    EXPECT_EQ(titleOffset(), rest);
    // The times still change while the title moves. Reduce Motion stops the title.
    clock.advance(4s);
    const std::vector<SceneControl> controls = scene().controls;
    clock.advance(1s);
    EXPECT_NE(scene().controls, controls);
    EXPECT_NE(titleOffset(), rest);
    reducesMotion = true;
    clock.advance(50ms);
    EXPECT_FALSE(all<TextNode>(scene()).at(0).scroll);
}

TEST_F(PlayerCardTest, FadesToNewArtworkOnceItIsDecodedAndReleasesTheOld) {
    std::string late;
    model.onLateChange = [&](const PlayerModel::Change& change) { late += change.summary; };
    const auto settle = [&](Image::State result) { model.artwork.get()->state().set(result); };
    const std::weak_ptr<const Image> old = model.artwork.get();
    decoded = Image::State::arriving;
    for (const char* bytes : {"rushes", "sedges"}) {
        playWithArtwork(bytes);
        clock.advance(0s);
        EXPECT_EQ(all<ImageNode>(scene()).at(0).image, old.lock());
        EXPECT_EQ(all<ImageNode>(scene()).at(1).image, model.artwork.get());
        EXPECT_EQ(artworkOpacity(), 0);
        nothingHappens(60s);
    }
    settle(Image::State::ready);
    clock.advance(175ms);
    EXPECT_NEAR(artworkOpacity(), 0.5, 0.1);
    clock.advance(1s);
    EXPECT_EQ(all<ImageNode>(scene()).size(), 1u);
    stage->scenes.erase(stage->scenes.begin(), stage->scenes.end() - 1);
    EXPECT_TRUE(old.expired());

    // The placeholder replaces undecodable artwork, unless newer artwork has arrived since.
    playWithArtwork("reed");
    const ImageRef outdated = model.artwork.get();
    playWithArtwork("rubble");
    outdated->state().set(Image::State::undecodable);
    EXPECT_EQ(late, "");
    settle(Image::State::undecodable);
    EXPECT_EQ(late, "artwork 6 B (undecodable)");
    clock.advance(1s);
    EXPECT_TRUE(all<ImageNode>(scene()).empty());

    // A newly shown card does not fade from the placeholder.
    playWithArtwork("reeds");
    card->setShown(false);
    card->setShown(true);
    EXPECT_EQ(artworkOpacity(), 0);
    settle(Image::State::ready);
    clock.advance(0s);
    EXPECT_EQ(artworkOpacity(), 1);
}

}  // namespace
}  // namespace quorvane

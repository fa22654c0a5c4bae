#include "AddOnKit/card/PlayerCard.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include <algorithm>

#include "tests/AddOnKit/player/PlayingModel.hpp"
#include "tests/support/FakeCardWindows.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using ID = SceneControl::ID;
using Kind = PointerEvent::Kind;

// A paused player, so that nothing moves by itself.
struct HiddenPlayerCardTest : testing::Test, PlayingModel {
    std::vector<std::string> actions;
    std::shared_ptr<FakeStage> stage = std::make_shared<FakeStage>();
    bool reducesMotion = false;
    std::unique_ptr<PlayerCard> card;

    HiddenPlayerCardTest() {
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
            environment());
        card->attach(stage);
    }

    PlayerCardEnvironment environment() {
        return {.clock = clock.clock(),
                .wallClock = clock.wallClock(),
                .localized = [](const std::string& key) { return key; },
                .measureText = measure,
                .reducesMotion = [this] { return reducesMotion; },
                .isRightToLeft = [] { return false; }};
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

struct PlayerCardTest : HiddenPlayerCardTest {
    PlayerCardTest() { card->setShown(true); }
};

constexpr Point kNowhere{2, 2};

TEST_F(HiddenPlayerCardTest, DrawsNothingAndKeepsNoTimerWhileNotShown) {
    model.togglePlayPause();
    nothingHappens(10s);
    EXPECT_TRUE(stage->scenes.empty());

    card->setShown(true);
    EXPECT_EQ(stage->scenes.size(), 1u);
    EXPECT_EQ(clock.pendingTimers(), 1u);
    clock.advance(10s);
    const std::size_t drawn = stage->scenes.size();
    EXPECT_GT(drawn, 10u);

    card->setShown(false);
    EXPECT_EQ(clock.pendingTimers(), 0u);
    model.toggleLove();
    nothingHappens(10s);
    tap(ID::next);
    stage->events.accessibility(ID::next, AccessibilityAction::press);
    EXPECT_TRUE(actions.empty());
}

TEST_F(PlayerCardTest, DrawsOnceForAllChangesOfAPassAndNotForNone) {
    nothingHappens(60s);
    state.track->title = "Rush";
    state.track->artist = "Sedge";
    state.volume = 70;
    apply();
    EXPECT_EQ(stage->scenes.size(), 1u);
    clock.advance(0s);
    EXPECT_EQ(stage->scenes.size(), 2u);
    model.isLiveStream.set(true);  // not seen on the card
    nothingHappens(60s);
}

TEST_F(PlayerCardTest, FiresWhenAPressIsReleasedInsideItsButton) {
    for (const ID id : {ID::previous, ID::playPause, ID::next, ID::love}) tap(id);
    EXPECT_EQ(actions, (std::vector<std::string>{"previous", "playPause", "next", "toggleLove"}));
    EXPECT_EQ(highlight(), 0);
    for (const ID id : {ID::title, ID::artwork, ID::progress}) tap(id);
    pointer(Kind::down, kNowhere);
    pointer(Kind::up, middle(ID::next));
    EXPECT_EQ(actions.size(), 4u);
}

TEST_F(PlayerCardTest, FollowsAPressOffItsButtonAndBack) {
    pointer(Kind::down, middle(ID::next));
    EXPECT_DOUBLE_EQ(highlight(), 1);
    nothingHappens(10s);
    pointer(Kind::dragged, middle(ID::playPause));
    EXPECT_EQ(highlight(), 0);
    pointer(Kind::dragged, middle(ID::next));
    EXPECT_DOUBLE_EQ(highlight(), 1);
    pointer(Kind::dragged, kNowhere);
    pointer(Kind::up, kNowhere);
    EXPECT_EQ(highlight(), 0);
    EXPECT_TRUE(actions.empty());

    pointer(Kind::down, middle(ID::next));
    pointer(Kind::cancelled, middle(ID::next));
    pointer(Kind::up, middle(ID::next));
    EXPECT_EQ(highlight(), 0);
    EXPECT_TRUE(actions.empty());

    pointer(Kind::down, middle(ID::next));
    pointer(Kind::dragged, kNowhere);
    pointer(Kind::up, middle(ID::next));
    EXPECT_EQ(actions, std::vector<std::string>{"next"});
}

TEST_F(PlayerCardTest, AnimatesAPressInFramesAndThenSleeps) {
    const std::size_t drawn = stage->scenes.size();
    pointer(Kind::down, middle(ID::next));
    clock.advance(200ms);
    const std::size_t frames = stage->scenes.size() - drawn;
    EXPECT_GE(frames, 4u);
    EXPECT_LE(frames, 7u);
    nothingHappens(60s);
}

TEST_F(PlayerCardTest, DropsAPressWhoseButtonIsGone) {
    const Point heart = middle(ID::love);
    pointer(Kind::down, heart);
    state.playerType = XPCPlayerType::spotify;
    apply();
    clock.advance(0s);
    pointer(Kind::dragged, heart);
    pointer(Kind::up, heart);
    EXPECT_TRUE(actions.empty());
    clock.advance(1s);
    nothingHappens(60s);
}

TEST_F(PlayerCardTest, DragsTheVolumeAlsoOutsideTheSlider) {
    const Rect slider = frame(ID::volume);
    pointer(Kind::down, {slider.x + 0.305 * slider.width, slider.y + 1});
    pointer(Kind::dragged, {slider.x + 0.405 * slider.width, -300});
    clock.advance(1s);
    EXPECT_TRUE(model.isDraggingVolume.get());
    pointer(Kind::dragged, {5000, 5000});
    pointer(Kind::up, {5000, 5000});
    EXPECT_EQ(actions,
              (std::vector<std::string>{"volume 30", "volume 40", "volume 100", "endVolume"}));
    EXPECT_FALSE(model.isDraggingVolume.get());
    clock.advance(1s);
    nothingHappens(60s);
}

TEST_F(PlayerCardTest, EndsADragThatIsCancelledOrHidden) {
    pointer(Kind::down, {frame(ID::volume).x + 1, middle(ID::volume).y});
    pointer(Kind::cancelled, kNowhere);
    EXPECT_EQ(actions, (std::vector<std::string>{"volume 0", "endVolume"}));
    EXPECT_FALSE(model.isDraggingVolume.get());

    pointer(Kind::down, middle(ID::volume));
    EXPECT_TRUE(model.isDraggingVolume.get());
    card->setShown(false);
    EXPECT_FALSE(model.isDraggingVolume.get());
    EXPECT_EQ(actions.back(), "endVolume");
    EXPECT_EQ(clock.pendingTimers(), 0u);

    card->setShown(true);
    pointer(Kind::up, middle(ID::volume));
    EXPECT_EQ(actions.size(), 4u);
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
    ask(ID::love, AccessibilityAction::press);
    ask(ID::next, AccessibilityAction::increment);
    ask(ID::title, AccessibilityAction::press);
    ask(ID::volume, AccessibilityAction::increment);
    ask(ID::volume, AccessibilityAction::decrement);
    const auto& set = stage->events.accessibilityNumber;
    set(ID::volume, 31.7);
    set(ID::volume, 1e300);
    set(ID::volume, std::nan(""));
    set(ID::progress, 10);
    EXPECT_EQ(actions, (std::vector<std::string>{"playPause", "toggleLove", "volume 55",
                                                 "volume 50", "volume 31", "volume 100"}));
}

// Sending a command may run the main loop, which may close the windows.
TEST_F(HiddenPlayerCardTest, SurvivesBeingDestroyedByItsOwnActions) {
    for (const int what : {0, 1, 2}) {
        const auto destroy = [this] { card.reset(); };
        PlayerActions deadly;
        if (what == 0) deadly.next = destroy;
        if (what == 1) deadly.endVolume = destroy;
        if (what == 2) deadly.setVolume = [destroy](std::int64_t) { destroy(); };
        card = std::make_unique<PlayerCard>(model, deadly, environment());
        card->attach(stage);
        card->setShown(true);
        model.volume.set(50);
        const auto handler = stage->events.pointer;  // as the system holds it
        const Point place =
            what == 0 ? middle(ID::next) : Point{frame(ID::volume).x + 1, middle(ID::volume).y};
        handler({Kind::down, place});
        if (what == 0) handler({Kind::up, place});
        if (what == 1) card->setShown(false);
        EXPECT_EQ(card, nullptr);
        EXPECT_FALSE(stage->events.pointer);
        model.toggleLove();
        nothingHappens(10s);
    }
}

// NaN where it does not scroll.
double titleOffset(const Scene& scene) {
    for (const SceneNode& node : scene.nodes)
        if (const auto* text = std::get_if<TextNode>(&node))
            return text->scroll ? text->scroll->offset : std::nan("");
    return 0;
}

TEST_F(HiddenPlayerCardTest, RestartsAMarqueeWhenItsTextChanges) {
    state.track->title = kLongTitle;
    apply();
    card->setShown(true);
    const double rest = titleOffset(scene());
    const std::size_t drawn = stage->scenes.size();
    clock.advance(2400ms);
    EXPECT_EQ(stage->scenes.size(), drawn);
    clock.advance(1100ms);
    EXPECT_NEAR(titleOffset(scene()) - rest, 32, 1.1);
    model.toggleLove();
    clock.advance(0s);
    EXPECT_NEAR(titleOffset(scene()) - rest, 32, 1.1);
    state.track->title = std::string{"Another "} + kLongTitle;
    apply();
    clock.advance(0s);
    EXPECT_EQ(titleOffset(scene()), rest);
    // The times still change beside it; Reduce Motion stops it.
    state.playerState = XPCPlayerState::playing;
    apply();
    clock.advance(4s);
    const std::vector<SceneControl> controls = scene().controls;
    clock.advance(1s);
    EXPECT_NE(scene().controls, controls);
    EXPECT_NE(titleOffset(scene()), rest);
    reducesMotion = true;
    clock.advance(50ms);
    EXPECT_TRUE(std::isnan(titleOffset(scene())));
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

TEST_F(PlayerCardTest, FadesToNewArtworkOnceItIsDecodedAndReleasesTheOld) {
    std::string late;
    model.onLateChange = [&](const PlayerModel::Change& change) { late += change.summary; };
    const std::weak_ptr<const Image> old = model.artwork.get();
    decoded = Image::State::arriving;
    for (const char* bytes : {"rushes", "sedges"}) {
        playWithArtwork(bytes);
        clock.advance(0s);
        EXPECT_EQ(imagesOf(scene()), (std::vector{old.lock(), model.artwork.get()}));
        EXPECT_EQ(fadeOf(scene()), 0);
        nothingHappens(60s);
    }
    model.artwork.get()->state().set(Image::State::ready);
    clock.advance(175ms);
    EXPECT_NEAR(fadeOf(scene()), 0.5, 0.1);
    clock.advance(1s);
    EXPECT_EQ(imagesOf(scene()), std::vector{model.artwork.get()});
    stage->scenes.erase(stage->scenes.begin(), stage->scenes.end() - 1);
    EXPECT_TRUE(old.expired());

    // The placeholder replaces undecodable artwork, unless newer artwork has arrived since.
    for (const char* bytes : {"reed", "rubble"}) {
        playWithArtwork(bytes);
        clock.advance(0s);
    }
    imagesOf(stage->scenes.end()[-2]).back()->state().set(Image::State::undecodable);
    EXPECT_EQ(late, "");
    model.artwork.get()->state().set(Image::State::undecodable);
    EXPECT_EQ(late, "artwork 6 B (undecodable)");
    clock.advance(1s);
    EXPECT_TRUE(imagesOf(scene()).empty());

    // A newly shown card does not fade from the placeholder.
    playWithArtwork("reeds");
    card->setShown(false);
    card->setShown(true);
    EXPECT_EQ(fadeOf(scene()), 0);
    model.artwork.get()->state().set(Image::State::ready);
    clock.advance(0s);
    EXPECT_EQ(fadeOf(scene()), 1);
}

}  // namespace
}  // namespace quorvane

#include "AddOnKit/card/VolumeSlider.hpp"

#include <gtest/gtest.h>

#include "tests/support/ManualClock.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

struct Fixture {
    ManualClock clock;
    PlayerModel model{clock.wallClock(), [](ByteView) { return ImageRef{}; }};
    std::vector<std::int64_t> sent;
    int ends = 0;
    PlayerActions actions{.setVolume = [this](std::int64_t volume) { sent.push_back(volume); },
                          .endVolume = [this] { ++ends; }};
    VolumeSlider slider{model, actions};

    // A state that says another volume, as the player would send it now.
    void playerSays(std::int64_t volume) {
        QuorvanePlayerState state;
        state.volume = volume;
        state.timestamp = clock.wallClock()();
        model.apply(state);
    }
};

TEST(VolumeSlider, TurnsATouchIntoAVolume) {
    const struct {
        double x, width;
        bool isRightToLeft;
        std::int64_t volume;
    } rows[] = {
        {0, 300, false, 0},   {300, 300, false, 100}, {150, 300, false, 50},
        {2.9, 300, false, 0}, {-40, 300, false, 0},   {999, 300, false, 100},
        {0, 300, true, 100},  {300, 300, true, 0},    {-40, 300, true, 100},
        {999, 300, true, 0},  {75, 300, true, 75},    {299.9, 300, false, 99},
        {0.5, 1, false, 50},  {0.25, 0, false, 25},   {7, 0, false, 100},
    };
    for (const auto& row : rows)
        EXPECT_EQ(VolumeSlider::value(row.x, row.width, row.isRightToLeft), row.volume)
            << row.x << " of " << row.width;
}

TEST(VolumeSlider, SendsEachNewVolumeOfADragAndItsEnd) {
    Fixture f;
    f.slider.dragChanged(100, 200);  // the 50 that it has
    EXPECT_TRUE(f.model.isDraggingVolume.get());
    EXPECT_TRUE(f.sent.empty());
    f.slider.dragChanged(20, 200);
    f.slider.dragChanged(20.5, 200);
    f.slider.dragChanged(-20, 200);
    EXPECT_EQ(f.sent, (std::vector<std::int64_t>{10, 0}));
    EXPECT_EQ(f.model.volume.get(), 0);
    f.playerSays(80);
    EXPECT_EQ(f.model.volume.get(), 0);

    f.slider.dragEnded();
    EXPECT_FALSE(f.model.isDraggingVolume.get());
    EXPECT_EQ(f.ends, 1);
    f.clock.advance(900ms);
    f.playerSays(80);
    EXPECT_EQ(f.model.volume.get(), 0);
    f.clock.advance(100ms);
    f.playerSays(80);
    EXPECT_EQ(f.model.volume.get(), 80);
}

TEST(VolumeSlider, StepsByFiveWithinItsRange) {
    Fixture f;
    f.model.volume.set(98);
    f.slider.adjust(AccessibilityAction::increment);
    EXPECT_EQ(f.model.volume.get(), 100);
    f.model.volume.set(3);
    f.slider.adjust(AccessibilityAction::decrement);
    EXPECT_EQ(f.model.volume.get(), 0);
    f.slider.adjust(AccessibilityAction::increment);
    f.slider.adjust(AccessibilityAction::press);
    EXPECT_EQ(f.sent, (std::vector<std::int64_t>{100, 0, 5}));
    EXPECT_FALSE(f.model.isDraggingVolume.get());
    f.playerSays(80);  // within the grace after a step
    EXPECT_EQ(f.model.volume.get(), 5);
}

Rect boundsOf(const Scene& scene) {
    return std::get<ShapeNode>(scene.nodes.front()).frame;  // of the track
}

TEST(VolumeSlider, GrowsWhileDraggedAndFillsFromTheLeadingEdge) {
    Fixture f;
    f.model.volume.set(25);
    const Rect frame{40, 180, 200, 24};
    Scene scene;
    VolumeSlider::draw(scene, frame, f.model, 0);
    EXPECT_EQ(boundsOf(scene), (Rect{40, 189, 200, 6}));
    const auto& fill = std::get<ShapeNode>(scene.nodes.at(1));
    EXPECT_EQ(fill.frame, (Rect{40, 189, 50, 6}));
    EXPECT_EQ(fill.fill, Color::white(0.8));
    EXPECT_EQ(fill.cornerRadius, 3);

    f.model.beginVolumeDrag();
    Scene dragged;
    dragged.isRightToLeft = true;
    VolumeSlider::draw(dragged, frame, f.model, 1);
    EXPECT_EQ(boundsOf(dragged), (Rect{40, 187, 200, 10}));
    const auto& mirrored = std::get<ShapeNode>(dragged.nodes.at(1));
    EXPECT_EQ(mirrored.frame, (Rect{190, 187, 50, 10}));
    EXPECT_EQ(mirrored.fill, Color::white(0.95));

    Transition thickening;
    VolumeSlider::thicken(thickening, true, Instant{});
    EXPECT_LT(thickening.at(Instant{50ms}), 0.9);
    EXPECT_EQ(thickening.at(Instant{1s}), 1);
}

TEST(VolumeSlider, KeepsARoundEndWhereLittleIsFilled) {
    Fixture f;
    const Rect frame{40, 180, 200, 24};
    f.model.volume.set(0);
    Scene empty;
    VolumeSlider::draw(empty, frame, f.model, 0);
    EXPECT_EQ(empty.nodes.size(), 1u);

    f.model.volume.set(1);
    Scene little;
    VolumeSlider::draw(little, frame, f.model, 0);
    const auto& clip = std::get<GroupBegin>(little.nodes.at(1));
    EXPECT_EQ(clip.clip, boundsOf(little));
    const auto& fill = std::get<ShapeNode>(little.nodes.at(2)).frame;
    EXPECT_GE(fill.width, fill.height);
    EXPECT_DOUBLE_EQ(fill.maxX(), 42);
    EXPECT_TRUE(std::holds_alternative<GroupEnd>(little.nodes.at(3)));
}

}  // namespace
}  // namespace quorvane

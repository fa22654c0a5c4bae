#include "AddOnKit/card/VolumeSlider.hpp"

#include <gtest/gtest.h>

#include "tests/AddOnKit/player/PlayingModel.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

constexpr Rect kFrame{40, 180, 200, 24};

struct VolumeSliderTest : testing::Test, PlayingModel {
    // The player reports another volume.
    std::int64_t volumeAfterReportOf(std::int64_t volume) {
        state.volume = volume;
        apply();
        return model.volume.get();
    }
    std::vector<SceneNode> drawn(double thickening, bool isRightToLeft = false) {
        Scene scene;
        scene.isRightToLeft = isRightToLeft;
        VolumeSlider::draw(scene, kFrame, model, thickening);
        return scene.nodes;
    }

    std::vector<std::int64_t> sent;
    int ends = 0;
    PlayerActions actions{.setVolume = [this](std::int64_t volume) { sent.push_back(volume); },
                          .endVolume = [this] { ++ends; }};
    VolumeSlider slider{model, actions};
};

TEST_F(VolumeSliderTest, TurnsATouchIntoAVolume) {
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

TEST_F(VolumeSliderTest, SendsEachNewVolumeOfADragAndItsEnd) {
    slider.dragChanged(100, 200);  // the present 50
    EXPECT_TRUE(model.isDraggingVolume.get());
    slider.dragChanged(20, 200);
    slider.dragChanged(20.5, 200);
    slider.dragChanged(-20, 200);
    EXPECT_EQ(sent, (std::vector<std::int64_t>{10, 0}));
    EXPECT_EQ(volumeAfterReportOf(80), 0);
    slider.dragEnded();
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(volumeAfterReportOf(80), 0) << "within the grace";
    clock.advance(1s);
    EXPECT_EQ(volumeAfterReportOf(80), 80);
}

TEST_F(VolumeSliderTest, StepsByFiveWithinItsRange) {
    model.volume.set(98);
    slider.adjust(AccessibilityAction::increment);
    model.volume.set(3);
    slider.adjust(AccessibilityAction::decrement);
    slider.adjust(AccessibilityAction::increment);
    slider.adjust(AccessibilityAction::press);
    EXPECT_EQ(sent, (std::vector<std::int64_t>{100, 0, 5}));
    EXPECT_FALSE(model.isDraggingVolume.get());
    EXPECT_EQ(volumeAfterReportOf(80), 5) << "within the grace";
}

TEST_F(VolumeSliderTest, GrowsWhileDraggedAndFillsFromTheLeadingEdge) {
    model.volume.set(25);
    const ShapeNode track{{40, 189, 200, 6}, 3, Color::white(0.25)};
    const ShapeNode fill{{40, 189, 50, 6}, 3, Color::white(0.8)};
    EXPECT_EQ(drawn(0), (std::vector<SceneNode>{track, fill}));
    model.beginVolumeDrag();
    const ShapeNode thickTrack{{40, 187, 200, 10}, 5, Color::white(0.25)};
    const ShapeNode thickFill{{190, 187, 50, 10}, 5, Color::white(0.95)};
    EXPECT_EQ(drawn(1, true), (std::vector<SceneNode>{thickTrack, thickFill}));
    model.endVolumeDrag();

    // A short fill keeps its round end; the track's end clips it.
    model.volume.set(1);
    const ShapeNode little{{36, 189, 6, 6}, 3, Color::white(0.8)};
    EXPECT_EQ(drawn(0),
              (std::vector<SceneNode>{track, GroupBegin{.clip = track.frame, .clipCornerRadius = 3},
                                      little, GroupEnd{}}));
    model.volume.set(0);
    EXPECT_EQ(drawn(0), std::vector<SceneNode>{track});

    Transition thickening;
    VolumeSlider::thicken(thickening, true, Instant{});
    EXPECT_LT(thickening.at(Instant{50ms}), 0.9);
    EXPECT_EQ(thickening.at(Instant{1s}), 1);
}

}  // namespace
}  // namespace quorvane

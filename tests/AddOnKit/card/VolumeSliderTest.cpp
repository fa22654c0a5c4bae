#include "AddOnKit/card/VolumeSlider.hpp"

#include <gtest/gtest.h>

#include "tests/AddOnKit/player/PlayingModel.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using Nodes = std::vector<SceneNode>;

TEST(VolumeSlider, TurnsATouchIntoAVolume) {
    const struct {
        double x, width;
        bool isRightToLeft;
        std::int64_t volume;
    } rows[] = {{150, 300, false, 50}, {2.9, 300, false, 0},   {299.9, 300, false, 99},
                {-40, 300, false, 0},  {999, 300, false, 100}, {0, 300, true, 100},
                {999, 300, true, 0},   {75, 300, true, 75},    {0.5, 1, false, 50},
                {0.25, 0, false, 25},  {7, 0, false, 100}};
    for (const auto& row : rows)
        EXPECT_EQ(VolumeSlider::value(row.x, row.width, row.isRightToLeft), row.volume)
            << row.x << " of " << row.width;
}

TEST(VolumeSlider, GrowsWhileDraggedAndFillsFromTheLeadingEdge) {
    PlayingModel f;
    const auto drawn = [&](double thickening, bool isRightToLeft = false) {
        Scene scene;
        scene.isRightToLeft = isRightToLeft;
        VolumeSlider::draw(scene, {40, 180, 200, 24}, f.model, thickening);
        return scene.nodes;
    };
    const ShapeNode track{{40, 189, 200, 6}, 3, Color::white(0.25)};
    const ShapeNode thickTrack{{40, 187, 200, 10}, 5, Color::white(0.25)};
    const ShapeNode thickFill{{190, 187, 50, 10}, 5, Color::white(0.95)};
    f.model.volume.set(25);
    EXPECT_EQ(drawn(0), (Nodes{track, ShapeNode{{40, 189, 50, 6}, 3, Color::white(0.8)}}));
    f.model.beginVolumeDrag();
    EXPECT_EQ(drawn(1, true), (Nodes{thickTrack, thickFill}));
    f.model.endVolumeDrag();

    // A short fill keeps its round end; the track's end clips it.
    f.model.volume.set(1);
    EXPECT_EQ(drawn(0), (Nodes{track, GroupBegin{.clip = track.frame, .clipCornerRadius = 3},
                               ShapeNode{{36, 189, 6, 6}, 3, Color::white(0.8)}, GroupEnd{}}));
    f.model.volume.set(0);
    EXPECT_EQ(drawn(0), Nodes{track});

    Transition thickening;
    VolumeSlider::thicken(thickening, true, Instant{});
    EXPECT_LT(thickening.at(Instant{50ms}), 0.9);
    EXPECT_EQ(thickening.at(Instant{1s}), 1);
}

}  // namespace
}  // namespace quorvane

// What is drawn again when a scene changes: all that differs, and little else.
#include "drawing/SceneChanges.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace quorvane {
namespace {

using Areas = std::vector<Rect>;

// In one order, and readable when a test fails.
std::vector<std::string> readable(const Areas& areas) {
    std::vector<std::string> texts;
    for (const Rect& area : areas) texts.push_back(describe(area));
    std::ranges::sort(texts);
    return texts;
}

#define EXPECT_CHANGES(areas, ...) EXPECT_EQ(readable(areas), readable(__VA_ARGS__))

SceneNode shape(const Rect& frame, Color fill = Color::white()) {
    return ShapeNode{frame, 0, fill};
}
SceneNode text(const Rect& frame, const std::string& words) {
    TextNode node;
    node.frame = frame;
    node.text = words;
    return node;
}
Scene scene(std::vector<SceneNode> nodes) {
    Scene result;
    result.nodes = std::move(nodes);
    return result;
}

const Rect kTitle{100, 20, 200, 24};
const Rect kBar{20, 100, 360, 6};
const Rect kButton{180, 140, 44, 44};

TEST(SceneChanges, AreThePlacesOfTheNodesThatDiffer) {
    const Scene before = scene({text(kTitle, "one"), shape(kBar), shape(kButton)});
    EXPECT_CHANGES(changedAreas(before, before), Areas{});
    Scene after = before;
    after.nodes[0] = text(kTitle, "two");
    EXPECT_CHANGES(changedAreas(before, after), Areas{kTitle});
    after.nodes[2] = shape(kButton.movedBy(100, 0));
    EXPECT_CHANGES(changedAreas(before, after), (Areas{kTitle, kButton, kButton.movedBy(100, 0)}));
    after = before;
    after.nodes[1] = shape({20, 100, 380, 6});
    EXPECT_CHANGES(changedAreas(before, after), (Areas{{20, 100, 380, 6}}))
        << "overlapping ones join";
}

TEST(SceneChanges, OfComingAndGoingLeaveTheOthersAlone) {
    const Scene with = scene({text(kTitle, "one"), shape(kButton), shape(kBar)});
    const Scene without = scene({text(kTitle, "one"), shape(kBar)});
    EXPECT_CHANGES(changedAreas(with, without), Areas{kButton});
    EXPECT_CHANGES(changedAreas(without, with), Areas{kButton});
    EXPECT_CHANGES(changedAreas(Scene{}, without), (Areas{kTitle, kBar}));
}

TEST(SceneChanges, OfAGroupReachAllInsideIt) {
    const auto grouped = [](GroupBegin group) {
        return scene({shape(kBar), group, shape(kButton), GroupEnd{}, text(kTitle, "one")});
    };
    GroupBegin pressed;
    pressed.opacity = 0.75;
    EXPECT_CHANGES(changedAreas(grouped({}), grouped(pressed)), Areas{kButton});
    GroupBegin grown;
    grown.transform = {.scale = 2, .centre = {202, 162}, .offset = {0, 0}};
    EXPECT_CHANGES(changedAreas(grouped({}), grouped(grown)), (Areas{{158, 118, 88, 88}}));
    GroupBegin moved;
    moved.transform.offset = {0, 200};
    EXPECT_CHANGES(changedAreas(grouped({}), grouped(moved)),
                   (Areas{kButton, kButton.movedBy(0, 200)}));
    // The same nodes, another one of them inside.
    EXPECT_CHANGES(changedAreas(scene({pressed, shape(kBar), GroupEnd{}, shape(kButton)}),
                                scene({shape(kBar), pressed, shape(kButton), GroupEnd{}})),
                   (Areas{kBar, kButton}));
}

TEST(SceneChanges, OfDirectionReachEverythingAndOfControlsNothing) {
    const Scene before = scene({text(kTitle, "one"), shape(kBar)});
    Scene mirrored = before;
    mirrored.isRightToLeft = true;
    EXPECT_CHANGES(changedAreas(before, mirrored), (Areas{kTitle, kBar}));
    Scene labelled = before;
    labelled.controls.push_back({.id = SceneControl::ID::next, .role = SceneControl::Role::button});
    EXPECT_NE(before, labelled);
    EXPECT_CHANGES(changedAreas(before, labelled), Areas{});
}

TEST(SceneChanges, NeverOverlapAndHoldEveryDifference) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random{seed};
    const auto number = [&](int below) { return static_cast<int>(random() % unsigned(below)); };
    const auto randomScene = [&] {
        std::vector<SceneNode> nodes;
        for (int i = number(8); i > 0; --i)
            nodes.push_back(shape({double(number(9)) * 30, double(number(5)) * 30,
                                   double(1 + number(60)), double(1 + number(60))},
                                  Color::white(number(2) / 2.0)));
        return scene(nodes);
    };
    for (int round = 0; round < 300; ++round) {
        const Scene from = randomScene();
        const Scene to = randomScene();
        const Areas areas = changedAreas(from, to);
        for (std::size_t i = 0; i < areas.size(); ++i)
            for (std::size_t j = 0; j < i; ++j) EXPECT_FALSE(areas[i].intersects(areas[j]));
        // The shapes over a place, from back to front, decide its look.
        const auto stackAt = [](const Scene& drawn, Point point) {
            std::vector<SceneNode> stack;
            for (const SceneNode& node : drawn.nodes)
                if (std::get<ShapeNode>(node).frame.contains(point)) stack.push_back(node);
            return stack;
        };
        for (int x = 0; x < 330; x += 15)
            for (int y = 0; y < 210; y += 15) {
                const Point point{x + 0.5, y + 0.5};
                if (stackAt(from, point) == stackAt(to, point)) continue;
                EXPECT_TRUE(std::ranges::any_of(areas, [&](const Rect& area) {
                    return area.contains(point);
                })) << describe(point);
            }
    }
}

}  // namespace
}  // namespace quorvane

#include "drawing/SceneChanges.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace quorvane {
namespace {

using Areas = std::vector<Rect>;

SceneNode shape(const Rect& frame, Color fill = Color::white()) {
    return ShapeNode{frame, 0, fill};
}
Scene scene(std::vector<SceneNode> nodes) {
    Scene result;
    result.nodes = std::move(nodes);
    return result;
}

TEST(SceneChanges, AreThePlacesOfWhatDiffers) {
    const Rect titlePlace{100, 20, 200, 24}, barPlace{20, 100, 360, 6}, longer{20, 100, 380, 6};
    const Rect place{180, 140, 44, 44}, moved{280, 140, 44, 44}, grown{158, 118, 88, 88};
    const SceneNode title = shape(titlePlace), bar = shape(barPlace), button = shape(place);
    const SceneNode other = shape(titlePlace, Color::black());
    const Scene all = scene({title, button, bar}), two = scene({title, bar});
    const auto grouped = [&](const GroupBegin& group) {
        return scene({bar, group, button, GroupEnd{}, title});
    };
    const GroupBegin pressed{.opacity = 0.75}, moving{.transform = {.offset = {100, 0}}};
    const GroupBegin growing{.transform = {.scale = 2, .centre = {202, 162}}};
    Scene mirrored = all, labelled = all;
    mirrored.isRightToLeft = true;
    labelled.label = "Now Playing";
    const struct {
        Scene from, to;
        Areas changed;
    } rows[] = {
        {all, labelled, {}},
        {all, scene({other, button, bar}), {titlePlace}},
        {all, scene({title, shape(moved), bar}), {place, moved}},
        {all, scene({title, button, shape(longer)}), {longer}},  // overlapping ones join
        {all, two, {place}},
        {two, all, {place}},
        {{}, two, {titlePlace, barPlace}},
        {all, mirrored, {titlePlace, place, barPlace}},
        {grouped({}), grouped(pressed), {place}},
        {grouped({}), grouped(growing), {grown}},
        {grouped({}), grouped(moving), {place, moved}},
        // The same nodes, with another one inside.
        {scene({pressed, bar, GroupEnd{}, button}),
         scene({bar, pressed, button, GroupEnd{}}),
         {barPlace, place}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(changedAreas(row.from, row.to), row.changed) << &row - rows;
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
    // The shapes over a place, from back to front, decide its look.
    const auto stackAt = [](const Scene& drawn, Point point) {
        std::vector<SceneNode> stack;
        for (const SceneNode& node : drawn.nodes)
            if (std::get<ShapeNode>(node).frame.contains(point)) stack.push_back(node);
        return stack;
    };
    for (int round = 0; round < 300; ++round) {
        const Scene from = randomScene(), to = randomScene();
        const Areas areas = changedAreas(from, to);
        for (std::size_t i = 0; i < areas.size(); ++i)
            for (std::size_t j = 0; j < i; ++j) EXPECT_FALSE(areas[i].intersects(areas[j]));
        for (double x = 0.5; x < 330; x += 15)
            for (double y = 0.5; y < 210; y += 15) {
                const auto holds = [&](const Rect& area) { return area.contains({x, y}); };
                EXPECT_TRUE(stackAt(from, {x, y}) == stackAt(to, {x, y}) ||
                            std::ranges::any_of(areas, holds))
                    << x << ", " << y;
            }
    }
}

}  // namespace
}  // namespace quorvane

#include "drawing/SceneLeaves.hpp"

#include <algorithm>
#include <cmath>

namespace quorvane {
namespace {

struct FrameOf {
    template <typename Node>
    Rect operator()(const Node& node) const {
        if constexpr (requires { node.frame; })
            return node.frame;
        else
            return {};
    }
};

}  // namespace

bool Leaf::looksLike(const Leaf& other) const {
    return *node == *other.node &&
           std::ranges::equal(groups, other.groups,
                              [](const auto* one, const auto* two) { return *one == *two; });
}

std::vector<Leaf> leavesOf(const Scene& scene) {
    std::vector<Leaf> leaves;
    leaves.reserve(scene.nodes.size());
    std::vector<const GroupBegin*> groups;
    for (const SceneNode& node : scene.nodes) {
        if (const auto* begin = std::get_if<GroupBegin>(&node))
            groups.push_back(begin);
        else if (!std::holds_alternative<GroupEnd>(node))
            leaves.push_back({&node, groups});
        else if (!groups.empty())
            groups.pop_back();
    }
    return leaves;
}

Rect areaOf(const Leaf& leaf) {
    const Rect frame = std::visit(FrameOf{}, *leaf.node);
    Point low{frame.minX(), frame.minY()};
    Point high{frame.maxX(), frame.maxY()};
    for (auto group = leaf.groups.rbegin(); group != leaf.groups.rend(); ++group) {
        low = (*group)->transform.apply(low);
        high = (*group)->transform.apply(high);
    }
    // Clips are ignored, because they only make the area smaller.
    return {std::min(low.x, high.x), std::min(low.y, high.y), std::abs(high.x - low.x),
            std::abs(high.y - low.y)};
}

}  // namespace quorvane

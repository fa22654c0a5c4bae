#include "drawing/SceneChanges.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace quorvane {
namespace {

// A node that paints, with its enclosing groups, outermost first. Refers to its scene.
struct Leaf {
    const SceneNode* node;
    std::vector<const GroupBegin*> groups;

    bool looksLike(const Leaf& other) const {
        return *node == *other.node &&
               std::ranges::equal(groups, other.groups,
                                  [](const auto* one, const auto* two) { return *one == *two; });
    }
};

struct FrameOf {
    const InkOf& inkOf;

    template <typename Node>
    Rect operator()(const Node& node) const {
        if constexpr (requires { node.frame; })
            return node.frame;
        else
            return {};
    }
    Rect operator()(const TextNode& text) const { return inkOf ? inkOf(text) : text.frame; }
};

// From back to front.
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

// The area that a leaf may paint on.
Rect areaOf(const Leaf& leaf, const InkOf& inkOf) {
    const Rect frame = std::visit(FrameOf{inkOf}, *leaf.node);
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

Rect unionOf(const Rect& one, const Rect& two) {
    const double left = std::min(one.minX(), two.minX());
    const double top = std::min(one.minY(), two.minY());
    return {left, top, std::max(one.maxX(), two.maxX()) - left,
            std::max(one.maxY(), two.maxY()) - top};
}

// Keeps the areas disjoint: merges those that overlap.
void add(std::vector<Rect>& areas, Rect area) {
    if (area.isEmpty()) return;
    // Start again, because the grown area may overlap one that was passed already.
    for (auto other = areas.begin(); other != areas.end();) {
        if (!other->intersects(area)) {
            ++other;
            continue;
        }
        area = unionOf(area, *other);
        areas.erase(other);
        other = areas.begin();
    }
    areas.push_back(area);
}

}  // namespace

std::vector<Rect> changedAreas(const Scene& from, const Scene& to, const InkOf& inkOf) {
    const std::vector<Leaf> before = leavesOf(from);
    const std::vector<Leaf> after = leavesOf(to);
    // The nodes do not record the direction, so a change of it counts as a difference everywhere.
    const auto isSame = [mirrored = from.isRightToLeft != to.isRightToLeft](const Leaf& one,
                                                                            const Leaf& two) {
        return !mirrored && one.looksLike(two);
    };
    std::size_t begin = 0;
    std::size_t beforeEnd = before.size();
    std::size_t afterEnd = after.size();
    // An inserted or removed leaf shifts all later ones in the list, so skip the equal ends.
    if (beforeEnd != afterEnd) {
        while (begin < std::min(beforeEnd, afterEnd) && isSame(before[begin], after[begin]))
            ++begin;
        while (beforeEnd > begin && afterEnd > begin &&
               isSame(before[beforeEnd - 1], after[afterEnd - 1])) {
            --beforeEnd;
            --afterEnd;
        }
    }
    const bool isPairwise = beforeEnd == afterEnd;
    std::vector<Rect> areas;
    for (std::size_t i = begin; i < beforeEnd; ++i)
        if (!isPairwise || !isSame(before[i], after[i])) add(areas, areaOf(before[i], inkOf));
    for (std::size_t i = begin; i < afterEnd; ++i)
        if (!isPairwise || !isSame(before[i], after[i])) add(areas, areaOf(after[i], inkOf));
    return areas;
}

}  // namespace quorvane

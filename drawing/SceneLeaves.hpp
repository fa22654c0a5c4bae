// The painting nodes of a scene and their areas. Pure.
#pragma once

#include <vector>

#include "drawing/Scene.hpp"

namespace quorvane {

// A node that paints, with its enclosing groups, outermost first. Refers to its scene.
struct Leaf {
    const SceneNode* node;
    std::vector<const GroupBegin*> groups;

    bool looksLike(const Leaf& other) const;
};

// From back to front.
std::vector<Leaf> leavesOf(const Scene& scene);

// The area that a leaf may paint on.
Rect areaOf(const Leaf& leaf);

}  // namespace quorvane

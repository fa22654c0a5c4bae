// What of a scene paints, and where. Pure.
#pragma once

#include <vector>

#include "drawing/Scene.hpp"

namespace quorvane {

// A node that paints, with the groups around it from the outermost in. Refers to its scene.
struct Leaf {
    const SceneNode* node;
    std::vector<const GroupBegin*> groups;

    bool looksLike(const Leaf& other) const;
};

// From back to front.
std::vector<Leaf> leavesOf(const Scene& scene);

// What a leaf may paint on.
Rect areaOf(const Leaf& leaf);

}  // namespace quorvane

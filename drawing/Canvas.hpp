// The interface between a scene and the system's drawing.
#pragma once

#include <functional>
#include <string>

#include "drawing/Scene.hpp"

namespace quorvane {

// Draws scenes to one target. One thread. Caches costly results (laid-out text, scaled pictures)
// between scenes.
class Canvas {
public:
    virtual ~Canvas() = default;
    virtual void draw(const Scene& scene) = 0;
};

// The width of one line of text in points, as the canvas will draw it. Main thread.
using MeasureText = std::function<double(const std::string& text, const FontStyle& font)>;

}  // namespace quorvane

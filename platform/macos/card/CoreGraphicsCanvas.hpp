// Canvas of this edition: Core Graphics for shapes and pictures, Core Text for lines, the system's
// own symbols. For Objective-C++ only.
#pragma once

#include "drawing/Scene.hpp"
#include "platform/macos/card/SymbolImages.hpp"
#include "platform/macos/card/TextLinesMacOS.hpp"

namespace quorvane {

// Main thread only.
class CoreGraphicsCanvas {
public:
    // Draws on the current graphics context, in the scene's coordinates: points, with y growing
    // downward. Draws nothing without a current context.
    void draw(const Scene& scene);

private:
    TextLinesMacOS lines_;
    SymbolImages symbols_;
};

}  // namespace quorvane

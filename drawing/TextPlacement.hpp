// The place of a line of text in its frame, the same on every canvas. Pure.
#pragma once

#include <array>
#include <vector>

#include "drawing/Scene.hpp"

namespace quorvane {

// Of a font, in points above and below the baseline.
struct LineHeights {
    double ascent = 0;
    double descent = 0;
};

// The baseline's distance from the scene's top: the line is centred in the frame's height.
double baselineOf(const Rect& frame, const LineHeights& heights);

// The left edge of a line of this width, which may be wider than the frame. A scrolling line rests
// there.
double leftEdgeOf(const TextNode& node, double width, bool isRightToLeft);

// Whether it must be cut to fit; rounding alone is no reason.
bool isTooWide(const TextNode& node, double width);

// The left edges of the visible copies of a scrolling line, whose left edge is `rest` when it
// rests.
std::vector<double> copiesOf(const TextNode& node, double rest, double width, bool isRightToLeft);

// How strong a scrolling line is at places between its frame's edges, from 0 to 1: full between the
// two fades, which rise late, so that next to a picture the text is all but gone.
struct FadeStop {
    double place = 0;
    double strength = 0;
};
std::array<FadeStop, 12> fadeStops(const TextNode& node);

}  // namespace quorvane

// The place of a line of text in its frame, the same on every canvas. Pure.
#pragma once

#include <array>
#include <vector>

#include "drawing/Scene.hpp"

namespace quorvane {

// A font's heights above and below the baseline, in points.
struct LineHeights {
    double ascent = 0;
    double descent = 0;
};

// The baseline's distance from the scene's top: the line is centred in the frame's height.
double baselineOf(const Rect& frame, const LineHeights& heights);

// The left edge of a line of this width, which may be wider than the frame; for a scrolling line,
// its resting place.
double leftEdgeOf(const TextNode& node, double width, bool isRightToLeft);

// Whether the line must be cut to fit. Tolerates rounding.
bool isTooWide(const TextNode& node, double width);

// The left edges of the visible copies of a scrolling line with its resting left edge at `rest`.
std::vector<double> copiesOf(const TextNode& node, double rest, double width, bool isRightToLeft);

// A scrolling line that its stage moves: the left edges of it and of its copy at the beginning of
// a cycle, the area of both, and how far right both move in a cycle.
struct MovedLine {
    double left = 0;
    double copyLeft = 0;
    Rect area{};
    double distance = 0;
};
MovedLine movedLine(const TextNode& node, double width, bool isRightToLeft);

// The strength of a scrolling line at places between its frame's edges, both from 0 to 1. It is
// full between the two fades. The fades rise late, so that the text is almost invisible next to a
// picture.
struct FadeStop {
    double place = 0;
    double strength = 0;
};
std::array<FadeStop, 12> fadeStops(const TextNode& node);
// The strength `x` points after the frame's left edge.
double fadeStrength(const TextNode& node, double x);

}  // namespace quorvane

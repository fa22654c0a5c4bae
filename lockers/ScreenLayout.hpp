// From the X server's monitors, in pixels with y growing downward, to screens in points with y
// growing upward, and back. Pure values.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "drawing/Geometry.hpp"
#include "drawing/Screens.hpp"

namespace quorvane {

struct ScreenLayout {
    std::vector<Rect> monitors;  // pixels; the primary one first
    double scale = 1;            // pixels a point, the same for all: X11 knows no other way

    // The origin of points is the first monitor's bottom-left corner.
    Rect points(const Rect& pixels) const;
    // Whole pixels.
    Rect pixels(const Rect& points) const;
    // `keepClear` in pixels; each screen gets the part that lies on it.
    std::vector<Screen> screens(const std::vector<Rect>& keepClear) const;

    bool operator==(const ScreenLayout&) const = default;
};

// The value of a resource such as "Xft.dpi" in the text of the X resource database.
std::optional<double> numberResource(std::string_view resources, std::string_view name);

// The pixels a point: what the user demands ("1.5"; beyond 0.5 to 8 it does not count), else the
// desktop's dots per inch against the usual 96 in quarters, never below 1.
double scaleFor(std::optional<std::string_view> demand, std::optional<double> dotsPerInch);

// Several outputs that show the same picture are one screen.
std::vector<Rect> withoutRepeats(std::vector<Rect> monitors);

}  // namespace quorvane

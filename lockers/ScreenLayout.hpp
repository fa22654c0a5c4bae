// Conversion between the X server's monitors, in pixels with y growing downward, and screens, in
// points with y growing upward. Pure values.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "drawing/Geometry.hpp"
#include "drawing/Screens.hpp"

namespace quorvane {

// At this density a point is one pixel.
inline constexpr double kUsualDotsPerInch = 96;

struct ScreenLayout {
    std::vector<Rect> monitors;  // pixels; the primary one first
    double scale = 1;            // pixels per point; X11 has one for all monitors

    // The origin of points is the first monitor's bottom-left corner.
    Rect points(const Rect& pixels) const;
    // Whole pixels.
    Rect pixels(const Rect& points) const;
    // `keepClear` is in pixels; each screen gets the parts that lie on it.
    std::vector<Screen> screens(const std::vector<Rect>& keepClear) const;

    bool operator==(const ScreenLayout&) const = default;
};

// The value of a resource such as "Xft.dpi" in the text of the X resource database.
std::optional<double> numberResource(std::string_view resources, std::string_view name);

// Pixels per point: the user's setting ("1.5"; ignored outside 0.5 to 8), else the desktop's dots
// per inch divided by 96, rounded to quarters and limited to 1 to 8.
double scaleFor(std::string_view demand, std::optional<double> dotsPerInch);

// Removes duplicates, because several outputs that show the same picture are one screen.
std::vector<Rect> withoutRepeats(std::vector<Rect> monitors);

}  // namespace quorvane

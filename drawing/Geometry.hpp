// Points, sizes, rectangles and transforms. Lengths are points unless a name says pixels. The
// direction of y is documented where a rectangle is used.
#pragma once

#include <algorithm>
#include <string>

namespace quorvane {

struct Point {
    double x = 0;
    double y = 0;
    constexpr bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;
    constexpr bool operator==(const Size&) const = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    constexpr double minX() const { return x; }
    constexpr double minY() const { return y; }
    constexpr double midX() const { return x + width / 2; }
    constexpr double midY() const { return y + height / 2; }
    constexpr double maxX() const { return x + width; }
    constexpr double maxY() const { return y + height; }
    constexpr bool isEmpty() const { return width <= 0 || height <= 0; }

    // Only the low edges belong to the rectangle, so that neighbours share no point.
    constexpr bool contains(Point point) const {
        return point.x >= x && point.x < maxX() && point.y >= y && point.y < maxY();
    }
    constexpr bool covers(const Rect& other) const {
        return x <= other.x && y <= other.y && maxX() >= other.maxX() && maxY() >= other.maxY();
    }
    constexpr bool intersects(const Rect& other) const {
        return !isEmpty() && !other.isEmpty() && x < other.maxX() && other.x < maxX() &&
               y < other.maxY() && other.y < maxY();
    }
    constexpr Rect grownBy(double margin) const {
        return {x - margin, y - margin, width + 2 * margin, height + 2 * margin};
    }
    constexpr Rect movedBy(double dx, double dy) const { return {x + dx, y + dy, width, height}; }

    constexpr bool operator==(const Rect&) const = default;
};

// The place of a shape with the proportions of `content` that covers the frame around their common
// centre.
constexpr Rect covering(const Rect& frame, Size content) {
    const double scale = std::max(frame.width / content.width, frame.height / content.height);
    const Size shown{content.width * scale, content.height * scale};
    return {frame.midX() - shown.width / 2, frame.midY() - shown.height / 2, shown.width,
            shown.height};
}

constexpr Rect centredIn(const Rect& frame, Size content) {
    return {frame.midX() - content.width / 2, frame.midY() - content.height / 2, content.width,
            content.height};
}

// The corner radius, limited to half the rectangle's shorter side.
constexpr double fittingRadius(const Rect& rect, double cornerRadius) {
    return std::max(0.0, std::min({cornerRadius, rect.width / 2, rect.height / 2}));
}

// "{{x, y}, {width, height}}", whole numbers without decimals.
std::string describe(const Rect& rect);
std::string describe(Point point);

// Scales around `centre`, then moves by `offset`.
struct Transform {
    double scale = 1;
    Point centre{};
    Point offset{};

    static constexpr Transform identity() { return {}; }
    constexpr Point apply(Point point) const {
        return {centre.x + (point.x - centre.x) * scale + offset.x,
                centre.y + (point.y - centre.y) * scale + offset.y};
    }
    constexpr bool operator==(const Transform&) const = default;
};

}  // namespace quorvane

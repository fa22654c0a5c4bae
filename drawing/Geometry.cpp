#include "drawing/Geometry.hpp"

#include <cstdio>

namespace quorvane {
namespace {

std::string number(double value) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.6g", value);
    return buffer;
}

}  // namespace

std::string describe(Point point) { return "{" + number(point.x) + ", " + number(point.y) + "}"; }

std::string describe(const Rect& rect) {
    return "{" + describe(Point{rect.x, rect.y}) + ", {" + number(rect.width) + ", " +
           number(rect.height) + "}}";
}

}  // namespace quorvane

// Planes of numbers and the blur that makes glass and shadow soft. Pure functions.
#pragma once

#include <cstddef>
#include <vector>

namespace quorvane {

// One value for each place of a grid, row by row.
struct Plane {
    int width = 0;
    int height = 0;
    std::vector<float> values;

    Plane() = default;
    Plane(int columns, int rows, float value = 0)
        : width(columns),
          height(rows),
          values(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows), value) {}

    float& at(int x, int y) {
        return values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
    float at(int x, int y) const { return const_cast<Plane*>(this)->at(x, y); }
    // Between the values above and below a height whose whole numbers are the rows' middles: one
    // value a column, and one more that repeats the last.
    void readLine(float y, std::vector<float>& line) const;
};

// Between two neighbours of a line; places outside take the nearest value.
float sampled(const std::vector<float>& line, float x);

// Blurs like a Gaussian of this standard deviation, by three running means, so the cost does not
// grow with it. Beyond an edge its last value goes on.
void blur(Plane& plane, double deviation);

}  // namespace quorvane

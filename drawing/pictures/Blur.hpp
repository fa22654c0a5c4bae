// Planes of numbers, and the blur for glass and shadow. Pure functions.
#pragma once

#include <cstddef>
#include <vector>

namespace quorvane {

// A grid of values, row by row.
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
    // Interpolates between the rows above and below `y`; whole numbers are the rows' centres.
    // Writes one value per column, and one more that repeats the last.
    void readLine(float y, std::vector<float>& line) const;
};

// Interpolates between two neighbours of a line; places outside it take the nearest value.
float sampled(const std::vector<float>& line, float x);

// Approximates a Gaussian of this standard deviation by three running means, so that the cost does
// not depend on the deviation. Edge values are repeated beyond the edges.
void blur(Plane& plane, double deviation);

}  // namespace quorvane

#include "drawing/pictures/Blur.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace quorvane {
namespace {

constexpr int kPasses = 3;

// Three running means whose variances add up to the Gaussian's. Widths are odd, so that no mean
// shifts the picture. They are the two odd widths around the ideal one.
std::array<int, kPasses> meanWidths(double deviation) {
    const double variance = 12 * deviation * deviation;
    int lower = static_cast<int>(std::sqrt(variance / kPasses + 1));
    if (lower % 2 == 0) --lower;
    const double surplus = variance - kPasses * lower * lower - 4.0 * kPasses * lower - 3 * kPasses;
    const int lowerCount = static_cast<int>(std::lround(surplus / (-4.0 * lower - 4)));
    std::array<int, kPasses> widths{};
    for (int i = 0; i < kPasses; ++i)
        widths[static_cast<std::size_t>(i)] = i < lowerCount ? lower : lower + 2;
    return widths;
}

// One line of `count` values `stride` apart. `line` is a buffer for the line with its ends
// extended.
void mean(float* values, int count, int stride, int width, std::vector<float>& line) {
    const int reach = width / 2;
    const int end = count + 2 * reach + 1;
    line.resize(static_cast<std::size_t>(end));
    float* room = line.data();
    std::fill_n(room, reach, values[0]);
    for (int i = 0; i < count; ++i) room[reach + i] = values[i * stride];
    std::fill(room + reach + count, room + end, values[(count - 1) * stride]);
    float sum = 0;
    for (int i = 0; i < width; ++i) sum += room[i];
    const float share = 1.0F / static_cast<float>(width);
    for (int i = 0; i < count; ++i) {
        values[i * stride] = sum * share;
        sum += room[i + width] - room[i];
    }
}

}  // namespace

void Plane::readLine(float y, std::vector<float>& line) const {
    const float place = std::clamp(y, 0.0F, static_cast<float>(height - 1));
    const int upper = static_cast<int>(place);
    const int lower = std::min(upper + 1, height - 1);
    const float share = place - static_cast<float>(upper);
    line.resize(static_cast<std::size_t>(width) + 1);
    for (int x = 0; x < width; ++x)
        line[static_cast<std::size_t>(x)] = at(x, upper) + (at(x, lower) - at(x, upper)) * share;
    line.back() = line[static_cast<std::size_t>(width) - 1];
}

float sampled(const std::vector<float>& line, float x) {
    const float place = std::clamp(x, 0.0F, static_cast<float>(line.size() - 2));
    const auto left = static_cast<std::size_t>(place);
    return line[left] + (line[left + 1] - line[left]) * (place - static_cast<float>(left));
}

void blur(Plane& plane, double deviation) {
    if (plane.values.empty() || deviation <= 0) return;
    std::vector<float> line;
    for (const int width : meanWidths(deviation)) {
        if (width <= 1) continue;
        for (int y = 0; y < plane.height; ++y) mean(&plane.at(0, y), plane.width, 1, width, line);
        for (int x = 0; x < plane.width; ++x)
            mean(&plane.at(x, 0), plane.height, plane.width, width, line);
    }
}

}  // namespace quorvane

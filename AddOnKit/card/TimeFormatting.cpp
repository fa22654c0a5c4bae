#include "AddOnKit/card/TimeFormatting.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace quorvane::TimeFormatting {
namespace {

constexpr char kMinus[] = "\u2212";
constexpr char kUnknown[] = "\u2212\u2013:\u2013\u2013";
// Larger whole numbers are not exact in a double.
constexpr double kLongest = 9e15;

}  // namespace

std::string text(double seconds) {
    const double counted = std::isfinite(seconds) ? std::clamp(seconds, 0.0, kLongest) : 0.0;
    const auto whole = static_cast<long long>(std::floor(counted));
    char buffer[48];
    if (whole < 3600)
        std::snprintf(buffer, sizeof buffer, "%lld:%02lld", whole / 60, whole % 60);
    else
        std::snprintf(buffer, sizeof buffer, "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60,
                      whole % 60);
    return buffer;
}

std::string remaining(std::optional<double> duration, double position) {
    return duration ? kMinus + text(*duration - position) : kUnknown;
}

}  // namespace quorvane::TimeFormatting

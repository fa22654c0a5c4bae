#include "lockers/ScreenLayout.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <ranges>

#include "platform/Trimmed.hpp"

namespace quorvane {
namespace {

constexpr double kScaleStep = 0.25;
constexpr double kLeastDemand = 0.5;
constexpr double kMaxScale = 8;

// Parses the whole text as a number, independent of the locale.
std::optional<double> number(std::string_view text) {
    text = trimmed(text);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

Rect intersection(const Rect& one, const Rect& other) {
    const double left = std::max(one.minX(), other.minX());
    const double low = std::max(one.minY(), other.minY());
    return {left, low, std::min(one.maxX(), other.maxX()) - left,
            std::min(one.maxY(), other.maxY()) - low};
}

}  // namespace

Rect ScreenLayout::points(const Rect& pixels) const {
    const Rect origin = monitors.empty() ? Rect{} : monitors.front();
    return {(pixels.x - origin.x) / scale, (origin.maxY() - pixels.maxY()) / scale,
            pixels.width / scale, pixels.height / scale};
}

Rect ScreenLayout::pixels(const Rect& points) const {
    const Rect origin = monitors.empty() ? Rect{} : monitors.front();
    return {std::round(origin.x + points.x * scale),
            std::round(origin.maxY() - points.maxY() * scale), std::round(points.width * scale),
            std::round(points.height * scale)};
}

std::vector<Screen> ScreenLayout::screens(const std::vector<Rect>& keepClear) const {
    std::vector<Screen> list;
    for (const Rect& monitor : monitors) {
        Screen& screen = list.emplace_back(Screen{points(monitor), scale, {}});
        for (const Rect& zone : keepClear)
            if (zone.intersects(monitor))
                screen.keepClear.push_back(points(intersection(zone, monitor)));
    }
    return list;
}

std::optional<double> numberResource(std::string_view resources, std::string_view name) {
    for (const auto each : std::views::split(resources, '\n')) {
        const std::string_view line{each.begin(), each.end()};
        const auto colon = line.find(':');
        if (colon != std::string_view::npos && trimmed(line.substr(0, colon)) == name)
            return number(line.substr(colon + 1));
    }
    return std::nullopt;
}

double scaleFor(std::string_view demand, std::optional<double> dotsPerInch) {
    const auto scale = number(demand);
    if (scale && *scale >= kLeastDemand && *scale <= kMaxScale) return *scale;
    if (!dotsPerInch) return 1;
    const double steps = std::round(*dotsPerInch / kUsualDotsPerInch / kScaleStep);
    return std::clamp(steps * kScaleStep, 1.0, kMaxScale);
}

std::vector<Rect> withoutRepeats(std::vector<Rect> monitors) {
    std::vector<Rect> distinct;
    for (const Rect& monitor : monitors)
        if (!monitor.isEmpty() && std::ranges::find(distinct, monitor) == distinct.end())
            distinct.push_back(monitor);
    return distinct;
}

}  // namespace quorvane

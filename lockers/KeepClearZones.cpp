#include "lockers/KeepClearZones.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "lockers/LockerRules.hpp"
#include "lockers/ScreenLayout.hpp"

namespace quorvane {
namespace {

// Larger windows are not remembered, because they would leave the card no room.
constexpr double kLargestPrompt = 0.75;  // of the monitor

Rect centredArea(const Rect& monitor, Size half) {
    return {std::floor(monitor.midX()) - half.width, std::floor(monitor.midY()) - half.height,
            2 * half.width, 2 * half.height};
}

Rect promptArea(const Rect& monitor, Size prompt, const LockScene& scene) {
    const double dots = scene.dotsPerInch > 0 ? scene.dotsPerInch : kUsualDotsPerInch;
    const auto half = [&](double length, double last) {
        return std::max(std::ceil(length / 2 * dots / kUsualDotsPerInch), std::ceil(last / 2));
    };
    return centredArea(monitor, {half(prompt.width, scene.lastPrompt.width),
                                 half(prompt.height, scene.lastPrompt.height)});
}

// The windows on the screens that are smaller than a monitor.
std::vector<Rect> windowsOver(const LockScene& scene) {
    std::vector<Rect> windows;
    const auto addSmaller = [&](const std::vector<Rect>& frames) {
        std::ranges::copy_if(frames, std::back_inserter(windows), [&](const Rect& frame) {
            return !coversMonitor(frame, scene.monitors);
        });
    };
    for (const LockScene::Locker& locker : scene.lockers) addSmaller(locker.children);
    addSmaller(scene.dialogs);
    return windows;
}

void add(std::vector<Rect>& zones, const Rect& zone) {
    const auto holds = [&](const Rect& other) { return other.covers(zone); };
    if (!zone.isEmpty() && std::ranges::none_of(zones, holds)) zones.push_back(zone);
}

}  // namespace

Size promptsSeen(const LockScene& scene) {
    Size size = scene.lastPrompt;
    for (const Rect& window : windowsOver(scene))
        for (const Rect& monitor : scene.monitors) {
            const Point middle{std::floor(monitor.midX()), std::floor(monitor.midY())};
            if (!window.contains(middle) || window.width > kLargestPrompt * monitor.width ||
                window.height > kLargestPrompt * monitor.height)
                continue;
            size.width = std::max(
                {size.width, 2 * (middle.x - window.minX()), 2 * (window.maxX() - middle.x)});
            size.height = std::max(
                {size.height, 2 * (middle.y - window.minY()), 2 * (window.maxY() - middle.y)});
        }
    return size;
}

std::vector<Rect> keepClearZones(const LockScene& scene) {
    std::vector<Rect> zones;
    for (const LockScene::Locker& locker : scene.lockers)
        for (const Rect& monitor : scene.monitors)
            if (monitor.intersects(locker.frame))
                add(zones, promptArea(monitor, locker.prompt, scene));
    for (const Rect& window : windowsOver(scene)) add(zones, window);
    return zones;
}

}  // namespace quorvane

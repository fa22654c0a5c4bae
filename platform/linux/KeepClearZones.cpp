#include "platform/linux/KeepClearZones.hpp"

#include <algorithm>
#include <cmath>

#include "platform/linux/LockerRules.hpp"

namespace quorvane {
namespace {

// i3lock's circle has a radius of 90 and 5 around it, at 96 dots per inch.
constexpr double kIndicatorRadius = 95;
constexpr double kIndicatorDotsPerInch = 96;

Rect indicator(const Rect& monitor, double dotsPerInch) {
    const double dots = dotsPerInch > 0 ? dotsPerInch : kIndicatorDotsPerInch;
    const double radius = std::ceil(kIndicatorRadius * dots / kIndicatorDotsPerInch);
    return {std::floor(monitor.midX()) - radius, std::floor(monitor.midY()) - radius, 2 * radius,
            2 * radius};
}

bool coversAny(const Rect& frame, const std::vector<Rect>& monitors) {
    return std::ranges::any_of(monitors,
                               [&](const Rect& monitor) { return covers(frame, monitor); });
}

void add(std::vector<Rect>& zones, const Rect& zone) {
    if (!zone.isEmpty() && std::ranges::find(zones, zone) == zones.end()) zones.push_back(zone);
}

void addPrompts(std::vector<Rect>& zones, const std::vector<Rect>& windows,
                const std::vector<Rect>& monitors) {
    for (const Rect& window : windows)
        if (!coversAny(window, monitors)) add(zones, window);
}

}  // namespace

std::vector<Rect> keepClearZones(const LockScene& scene) {
    std::vector<Rect> zones;
    for (const LockScene::Locker& locker : scene.lockers) {
        if (!locker.opensPrompt)
            for (const Rect& monitor : scene.monitors)
                if (monitor.intersects(locker.frame))
                    add(zones, indicator(monitor, scene.dotsPerInch));
        addPrompts(zones, locker.children, scene.monitors);
    }
    if (!scene.lockers.empty()) addPrompts(zones, scene.dialogs, scene.monitors);
    return zones;
}

}  // namespace quorvane

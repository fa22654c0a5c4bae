#include "platform/linux/wayland/card/WaylandCardModule.hpp"

#include "platform/linux/drawing/TextLayoutCache.hpp"
#include "platform/linux/wayland/card/CardWindowWayland.hpp"

namespace quorvane {
extern "C" __attribute__((visibility("default"))) CardWindows quorvaneMakeWaylandCardWindows(
    const WaylandCardServices& services) {
    const auto resources = CardResources::make(services.clock, services.mainThread, services.log,
                                               services.makeSerialQueue, services.accessibility);
    CardWindows windows;
    windows.makeWindow = [&session = services.session, resources, made = 0L](
                             const WindowSettings& settings, const Screen& screen) mutable {
        return std::make_unique<CardWindowWayland>(session, resources, settings, screen, ++made);
    };
    windows.makeStage = [](const CardStyle& style) {
        return std::make_shared<CardStageLinux>(style);
    };
    windows.measureText = makeMeasureText();
    return windows;
}

}  // namespace quorvane

#include "platform/linux/wayland/card/WaylandCardModule.hpp"

#include "platform/linux/drawing/TextLayoutCache.hpp"
#include "platform/linux/wayland/card/CardWindowWayland.hpp"

namespace quorvane {
namespace {

std::shared_ptr<WaylandCardResources> makeResources(const WaylandCardServices& services) {
    std::shared_ptr<WaylandCardResources> resources{new WaylandCardResources{
        .session = services.session,
        .clock = services.clock,
        .mainThread = services.mainThread,
        .log = Logger{services.log, "example.quillon.Quorvane.Platform", "windows"},
        .accessibility = services.accessibility}};
    if (!services.makeSerialQueue) {
        resources->pictures = std::make_shared<PictureCache>();
        return resources;
    }
    resources->pictures = std::make_shared<PictureCache>(
        services.makeSerialQueue("example.quillon.Quorvane.LockScreenAddOn.pictures"),
        services.mainThread, [weak = std::weak_ptr{resources}] {
            if (const auto held = weak.lock()) held->picturesArrived.call();
        });
    return resources;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) CardWindows quorvaneMakeWaylandCardWindows(
    const WaylandCardServices& services) {
    const auto resources = makeResources(services);
    CardWindows windows;
    windows.makeWindow = [resources](const WindowSettings& settings, const Screen& screen) {
        return std::make_unique<CardWindowWayland>(resources, settings, screen);
    };
    windows.makeStage = [](const CardStyle& style) {
        return std::make_shared<CardStageX11>(style);
    };
    windows.measureText = makeMeasureText();
    return windows;
}

}  // namespace quorvane

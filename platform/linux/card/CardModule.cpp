#include "platform/linux/card/CardModule.hpp"

#include <malloc.h>

#include "platform/linux/card/CardStageX11.hpp"
#include "platform/linux/card/CardWindowX11.hpp"
#include "platform/linux/drawing/TextLayoutCache.hpp"

namespace quorvane {
namespace {

std::shared_ptr<CardResources> makeResources(const CardModuleServices& services) {
    std::shared_ptr<CardResources> resources{new CardResources{
        .x11 = services.x11,
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

// Window pictures are megabytes each and live as long as a card or a movement. By default the C
// library would soon allocate them from its heap, where the hole each leaves stays resident.
void giveLargeBlocksBack() {
    constexpr int kLarge = 256 * 1024;
    mallopt(M_MMAP_THRESHOLD, kLarge);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) CardWindows quorvaneMakeCardWindows(
    const CardModuleServices& services) {
    giveLargeBlocksBack();
    const auto resources = makeResources(services);
    CardWindows windows;
    windows.makeWindow = [resources](const WindowSettings& settings,
                                     const Screen& screen) -> std::unique_ptr<CardSystemWindow> {
        return CardWindowX11::make(resources, settings, screen);
    };
    windows.makeStage = [](const CardStyle& style) {
        return std::make_shared<CardStageX11>(style);
    };
    windows.measureText = makeMeasureText();
    return windows;
}

}  // namespace quorvane

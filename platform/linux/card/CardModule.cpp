#include "platform/linux/card/CardModule.hpp"

#include <malloc.h>

#include "platform/linux/card/CardStageLinux.hpp"
#include "platform/linux/card/CardWindowX11.hpp"
#include "platform/linux/drawing/TextLayoutCache.hpp"

namespace quorvane {
namespace {

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
    const auto resources = CardResources::make(services.clock, services.mainThread, services.log,
                                               services.makeSerialQueue, services.accessibility);
    CardWindows windows;
    windows.makeWindow = [&x11 = services.x11, resources](
                             const WindowSettings& settings,
                             const Screen& screen) -> std::unique_ptr<CardSystemWindow> {
        return CardWindowX11::make(x11, resources, settings, screen);
    };
    windows.makeStage = [](const CardStyle& style) {
        return std::make_shared<CardStageLinux>(style);
    };
    windows.measureText = makeMeasureText();
    return windows;
}

}  // namespace quorvane

#include "platform/linux/card/CardModule.hpp"
#include "platform/linux/card/CardWindowX11.hpp"

namespace quorvane {

extern "C" __attribute__((visibility("default"))) CardWindows quorvaneMakeX11CardWindows(
    const CardModuleServices& services, X11Session& x11) {
    return makeCardWindows([&x11, resources = CardResources::make(services)](
                               const WindowSettings& settings,
                               const Screen& screen) -> std::unique_ptr<CardSystemWindow> {
        return CardWindowX11::make(x11, resources, settings, screen);
    });
}

}  // namespace quorvane

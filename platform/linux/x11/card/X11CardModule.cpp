// Entry point of quorvane-x11-card.so, which CardModuleLoader loads.
#include "platform/linux/card/CardModule.hpp"
#include "platform/linux/x11/card/CardWindowX11.hpp"

namespace quorvane {

extern "C" __attribute__((visibility("default"))) CardWindows quorvaneMakeCardWindows(
    const CardModuleServices& services, void* session) {
    return makeCardWindows(
        [&x11 = *static_cast<X11Session*>(session), resources = CardResources::make(services)](
            const CardPlace& place, const Screen& screen) -> std::unique_ptr<CardSystemWindow> {
            return CardWindowX11::make(x11, resources, place, screen);
        });
}

}  // namespace quorvane

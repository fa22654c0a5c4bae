// Entry point of quorvane-wayland-card.so, which CardModuleLoader loads.
#include "platform/linux/card/CardModule.hpp"
#include "platform/linux/wayland/card/CardWindowWayland.hpp"

namespace quorvane {

extern "C" __attribute__((visibility("default"))) CardWindows quorvaneMakeCardWindows(
    const CardModuleServices& services, void* session) {
    return makeCardWindows([&wayland = *static_cast<WaylandSession*>(session),
                            resources = CardResources::make(services),
                            made = 0L](const CardPlace& place, const Screen& screen) mutable {
        return std::make_unique<CardWindowWayland>(wayland, resources, place, screen, ++made);
    });
}

}  // namespace quorvane

#include "platform/linux/DisplayModule.hpp"
#include "platform/linux/wayland/WaylandSessionLinux.hpp"

namespace quorvane {

extern "C" __attribute__((visibility("default"))) Result<Display> quorvaneOpenDisplay(
    const DisplayServices& services) {
    const auto wayland = std::make_shared<WaylandSessionLinux>(
        services.loop, services.folder / kSurfaceProgram, services.log);
    return Display{.screens = wayland->screens(),
                   .lockChanged = [&w = *wayland](bool isLocked) { w.setLocked(isLocked); },
                   .cardModule = "quorvane-wayland-card.so",
                   .cardSession = static_cast<WaylandSession*>(wayland.get()),
                   .session = wayland};
}

}  // namespace quorvane

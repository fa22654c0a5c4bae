// Entry point of quorvane-x11.so, which DisplayPlatform loads.
#include <cstdlib>

#include "platform/linux/DisplayModule.hpp"
#include "platform/linux/x11/X11SessionLinux.hpp"

namespace quorvane {

extern "C" __attribute__((visibility("default"))) Result<Display> quorvaneOpenDisplay(
    const DisplayServices& services) {
    auto opened = X11SessionLinux::open(services.loop, "", [services] {
        services.log.error("x11: the X server has gone away");
        services.loop.quit(EXIT_FAILURE);
    });
    if (!opened) return std::unexpected(std::move(opened).error());
    const std::shared_ptr<X11SessionLinux> x11 = *std::move(opened);
    return Display{
        .screens = x11->screens(),
        .detector = x11->detector(),
        .toolkitAnimates = [&x = *x11] { return x.toolkitSetting("Gtk/EnableAnimations"); },
        .mayBeRemote = true,
        .cardModule = "quorvane-x11-card.so",
        .cardSession = static_cast<X11Session*>(x11.get()),
        .session = x11};
}

}  // namespace quorvane

// Entry point of quorvane-wayland.so, which DisplayPlatform loads.
#include "lockers/KdeSettings.hpp"
#include "lockers/WaylandSessions.hpp"
#include "platform/linux/DisplayModule.hpp"
#include "platform/linux/files/Environment.hpp"
#include "platform/linux/hyprland/HyprlandLocks.hpp"
#include "platform/linux/wayland/WaylandSessionLinux.hpp"

namespace quorvane {

extern "C" __attribute__((visibility("default"))) Result<Display> quorvaneOpenDisplay(
    const DisplayServices& services) {
    const auto support =
        waylandSupport(environmentVariable("XDG_CURRENT_DESKTOP")).value_or(WaylandSupport{});
    struct Session {
        WaylandSessionLinux surfaces;
        std::unique_ptr<HyprlandLocks> locks;
    };
    const std::shared_ptr<Session> session{new Session{
        {services.loop, services.folder / kSurfaceProgram, support, services.log},
        support.hasLockNotices ? std::make_unique<HyprlandLocks>(services.loop) : nullptr}};
    WaylandSessionLinux& surfaces = session->surfaces;
    Display display{.screens = surfaces.screens(),
                    .toolkitAnimates = [] { return kdeAnimates(kdeSettings()); },
                    .lockChanged = [&surfaces](bool isLocked) { surfaces.setLocked(isLocked); },
                    .cardModule = "quorvane-wayland-card.so",
                    .cardSession = static_cast<WaylandSession*>(&surfaces),
                    .session = session};
    if (session->locks)
        display.detector = {.isDetected = [&locks = *session->locks] { return locks.isLocked(); },
                            .observe =
                                [&locks = *session->locks](std::function<void()> changed) {
                                    return locks.observe(std::move(changed));
                                }};
    return display;
}

}  // namespace quorvane

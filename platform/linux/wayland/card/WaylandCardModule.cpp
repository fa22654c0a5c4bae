#include "platform/linux/card/CardModule.hpp"
#include "platform/linux/wayland/card/CardWindowWayland.hpp"

namespace quorvane {

extern "C" __attribute__((visibility("default"))) CardWindows quorvaneMakeWaylandCardWindows(
    const CardModuleServices& services, WaylandSession& session) {
    return makeCardWindows([&session, resources = CardResources::make(services), made = 0L](
                               const WindowSettings& settings, const Screen& screen) mutable {
        return std::make_unique<CardWindowWayland>(session, resources, settings, screen, ++made);
    });
}

}  // namespace quorvane

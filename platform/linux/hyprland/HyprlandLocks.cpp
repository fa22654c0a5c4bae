#include "platform/linux/hyprland/HyprlandLocks.hpp"

#include <lock-notify-client-protocol.h>
#include <sys/epoll.h>
#include <wayland-client.h>

#include <string_view>
#include <utility>

namespace quorvane {

HyprlandLocks::HyprlandLocks(EventLoop& loop) : display_(wl_display_connect(nullptr)) {
    static constexpr wl_registry_listener kListener{
        .global =
            [](void* self, wl_registry*, std::uint32_t name, const char* interface, std::uint32_t) {
                if (std::string_view{interface} == hyprland_lock_notifier_v1_interface.name)
                    static_cast<HyprlandLocks*>(self)->bind(name);
            },
        .global_remove = [](void*, wl_registry*, std::uint32_t) {},
    };
    if (!display_) return;
    registry_ = wl_display_get_registry(display_);
    wl_registry_add_listener(registry_, &kListener, this);
    wl_display_flush(display_);
    watch_ = loop.watch(wl_display_get_fd(display_), EPOLLIN, [this](std::uint32_t) { read(); });
}

HyprlandLocks::~HyprlandLocks() {
    watch_.reset();
    if (notification_) hyprland_lock_notification_v1_destroy(notification_);
    if (notifier_) hyprland_lock_notifier_v1_destroy(notifier_);
    if (registry_) wl_registry_destroy(registry_);
    if (display_) wl_display_disconnect(display_);
}

void HyprlandLocks::bind(std::uint32_t name) {
    static constexpr hyprland_lock_notification_v1_listener kListener{
        .locked =
            [](void* self, hyprland_lock_notification_v1*) {
                static_cast<HyprlandLocks*>(self)->set(true);
            },
        .unlocked =
            [](void* self, hyprland_lock_notification_v1*) {
                static_cast<HyprlandLocks*>(self)->set(false);
            },
    };
    notifier_ = static_cast<hyprland_lock_notifier_v1*>(
        wl_registry_bind(registry_, name, &hyprland_lock_notifier_v1_interface, 1));
    notification_ = hyprland_lock_notifier_v1_get_lock_notification(notifier_);
    hyprland_lock_notification_v1_add_listener(notification_, &kListener, this);
}

void HyprlandLocks::set(bool isLocked) {
    if (std::exchange(isLocked_, isLocked) != isLocked) listeners_.call();
}

void HyprlandLocks::read() {
    if (wl_display_dispatch(display_) >= 0 && wl_display_flush(display_) >= 0) return;
    watch_.reset();
    set(false);
}

}  // namespace quorvane

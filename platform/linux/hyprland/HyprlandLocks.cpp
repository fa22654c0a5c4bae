#include "platform/linux/hyprland/HyprlandLocks.hpp"

#include <sys/epoll.h>

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
    registry_.reset(wl_display_get_registry(display_.get()));
    wl_registry_add_listener(registry_.get(), &kListener, this);
    wl_display_flush(display_.get());
    watch_ =
        loop.watch(wl_display_get_fd(display_.get()), EPOLLIN, [this](std::uint32_t) { read(); });
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
    notifier_.reset(static_cast<hyprland_lock_notifier_v1*>(
        wl_registry_bind(registry_.get(), name, &hyprland_lock_notifier_v1_interface, 1)));
    notification_.reset(hyprland_lock_notifier_v1_get_lock_notification(notifier_.get()));
    hyprland_lock_notification_v1_add_listener(notification_.get(), &kListener, this);
}

void HyprlandLocks::set(bool isLocked) {
    if (std::exchange(isLocked_, isLocked) != isLocked) listeners_.call();
}

void HyprlandLocks::read() {
    if (wl_display_dispatch(display_.get()) >= 0 && wl_display_flush(display_.get()) >= 0) return;
    watch_.reset();
    set(false);
}

}  // namespace quorvane

// Hyprland's notices of the lock.
#pragma once

#include <functional>

#include "platform/Handle.hpp"
#include "platform/Listeners.hpp"
#include "platform/linux/loop/EventLoop.hpp"
#include "platform/linux/wayland/WaylandHandles.hpp"

namespace quorvane {

// Main thread only. Has its own connection during its lifetime. When the compositor goes away, the
// screen no longer counts as locked.
class HyprlandLocks {
public:
    explicit HyprlandLocks(EventLoop& loop);
    HyprlandLocks(const HyprlandLocks&) = delete;
    HyprlandLocks& operator=(const HyprlandLocks&) = delete;

    bool isLocked() const { return isLocked_; }
    Handle observe(std::function<void()> changed) { return listeners_.add(std::move(changed)); }

private:
    void bind(std::uint32_t name);
    void set(bool isLocked);
    void read();

    // Each belongs to the ones above.
    Wayland<wl_display> display_;  // null without a compositor
    Wayland<wl_registry> registry_;
    Wayland<hyprland_lock_notifier_v1> notifier_;
    Wayland<hyprland_lock_notification_v1> notification_;
    bool isLocked_ = false;
    Listeners<> listeners_;
    Handle watch_;
};

}  // namespace quorvane

// Owners of Wayland objects.
#pragma once

#include <kde-lockscreen-overlay-v1-client-protocol.h>
#include <layer-shell-client-protocol.h>
#include <lock-notify-client-protocol.h>
#include <viewporter-client-protocol.h>
#include <wayland-client.h>
#include <xdg-output-unstable-v1-client-protocol.h>

#include <memory>

namespace quorvane {

struct DestroyWayland {
    void operator()(wl_display* object) const { wl_display_disconnect(object); }
    void operator()(wl_registry* object) const { wl_registry_destroy(object); }
    void operator()(wl_callback* object) const { wl_callback_destroy(object); }
    void operator()(wl_compositor* object) const { wl_compositor_destroy(object); }
    void operator()(wl_region* object) const { wl_region_destroy(object); }
    void operator()(wl_surface* object) const { wl_surface_destroy(object); }
    void operator()(wl_shm* object) const { wl_shm_destroy(object); }
    void operator()(wl_shm_pool* object) const { wl_shm_pool_destroy(object); }
    void operator()(wl_buffer* object) const { wl_buffer_destroy(object); }
    void operator()(wl_output* object) const { wl_output_destroy(object); }
    void operator()(wl_seat* object) const { wl_seat_destroy(object); }
    void operator()(wl_pointer* object) const { wl_pointer_release(object); }
    void operator()(wl_touch* object) const { wl_touch_release(object); }
    void operator()(wp_viewporter* object) const { wp_viewporter_destroy(object); }
    void operator()(wp_viewport* object) const { wp_viewport_destroy(object); }
    void operator()(zxdg_output_manager_v1* object) const {
        zxdg_output_manager_v1_destroy(object);
    }
    void operator()(zxdg_output_v1* object) const { zxdg_output_v1_destroy(object); }
    void operator()(zwlr_layer_shell_v1* object) const { zwlr_layer_shell_v1_destroy(object); }
    void operator()(zwlr_layer_surface_v1* object) const { zwlr_layer_surface_v1_destroy(object); }
    void operator()(kde_lockscreen_overlay_v1* object) const {
        kde_lockscreen_overlay_v1_destroy(object);
    }
    void operator()(hyprland_lock_notifier_v1* object) const {
        hyprland_lock_notifier_v1_destroy(object);
    }
    void operator()(hyprland_lock_notification_v1* object) const {
        hyprland_lock_notification_v1_destroy(object);
    }
};

template <typename Object>
using Wayland = std::unique_ptr<Object, DestroyWayland>;

}  // namespace quorvane

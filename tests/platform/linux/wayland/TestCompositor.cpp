#include "tests/platform/linux/wayland/TestCompositor.hpp"

#include <kde-lockscreen-overlay-v1-server-protocol.h>
#include <layer-shell-server-protocol.h>
#include <lock-notify-server-protocol.h>
#include <sys/epoll.h>
#include <viewporter-server-protocol.h>
#include <xdg-output-unstable-v1-server-protocol.h>

#include <algorithm>
#include <utility>

namespace quorvane {
namespace {

constexpr std::uint32_t kTime = 0;

TestCompositor::Surface& surfaceOf(wl_resource* resource) {
    return *static_cast<TestCompositor::Surface*>(wl_resource_get_user_data(resource));
}

wl_resource* make(wl_client* client, const wl_interface& interface, int version, std::uint32_t id,
                  const void* requests, void* data, wl_resource_destroy_func_t gone = nullptr) {
    wl_resource* const resource = wl_resource_create(client, &interface, version, id);
    wl_resource_set_implementation(resource, requests, data, gone);
    return resource;
}

void destroy(wl_client*, wl_resource* resource) { wl_resource_destroy(resource); }

std::string textOf(const wl_protocol_logger_message& message) {
    std::string text =
        std::string{wl_resource_get_class(message.resource)} + "." + message.message->name + "(";
    const char* kind = message.message->signature;
    for (int i = 0; i < message.arguments_count; ++i, ++kind) {
        while (*kind == '?' || (*kind >= '0' && *kind <= '9')) ++kind;
        if (i > 0) text += ", ";
        if (*kind == 'i' || *kind == 'u') text += std::to_string(message.arguments[i].i);
        if (*kind == 's') text += message.arguments[i].s;
    }
    return text + ")";
}

}  // namespace

// The requests, in the order of their opcodes.
struct CompositorRequests {
    static void createSurface(wl_client* client, wl_resource* resource, std::uint32_t id) {
        auto& self = *static_cast<TestCompositor*>(wl_resource_get_user_data(resource));
        static const struct wl_surface_interface requests = [] {
            struct wl_surface_interface all {};
            all.destroy = destroy;
            all.attach = [](wl_client*, wl_resource* surface, wl_resource* buffer, int, int) {
                surfaceOf(surface).buffer = buffer;
            };
            all.frame = [](wl_client* of, wl_resource* surface, std::uint32_t callback) {
                surfaceOf(surface).frames.push_back(
                    make(of, wl_callback_interface, 1, callback, nullptr, nullptr));
            };
            all.set_input_region = [](wl_client*, wl_resource* surface, wl_resource* region) {
                surfaceOf(surface).input =
                    *static_cast<std::vector<PixelRect>*>(wl_resource_get_user_data(region));
            };
            all.commit = [](wl_client*, wl_resource* surface) { commit(surfaceOf(surface)); };
            all.set_buffer_scale = [](wl_client*, wl_resource*, int) {};
            all.damage_buffer = [](wl_client*, wl_resource* surface, int x, int y, int width,
                                   int height) {
                surfaceOf(surface).damage.push_back({x, y, width, height});
            };
            return all;
        }();
        auto& surface = self.surfaces.emplace_back();
        surface.resource =
            make(client, wl_surface_interface, wl_resource_get_version(resource), id, &requests,
                 &surface, [](wl_resource* gone) { surfaceOf(gone).resource = nullptr; });
    }

    static void commit(TestCompositor::Surface& surface) {
        ++surface.commits;
        if (!surface.buffer) {
            if (surface.layer && surface.commits == 1)
                zwlr_layer_surface_v1_send_configure(surface.layer, 1, 0, 0);
            return;
        }
        wl_shm_buffer* const memory = wl_shm_buffer_get(surface.buffer);
        wl_shm_buffer_begin_access(memory);
        surface.shown = Pixels{wl_shm_buffer_get_width(memory), wl_shm_buffer_get_height(memory),
                               static_cast<std::uint32_t*>(wl_shm_buffer_get_data(memory))};
        wl_shm_buffer_end_access(memory);
        if (surface.reading && surface.reading != surface.buffer && !surface.isCovered)
            wl_buffer_send_release(surface.reading);
        surface.reading = surface.buffer;
    }

    static void createRegion(wl_client* client, wl_resource*, std::uint32_t id) {
        static constexpr struct wl_region_interface kRequests {
            destroy,
                [](wl_client*, wl_resource* region, int x, int y, int width, int height) {
                    static_cast<std::vector<PixelRect>*>(wl_resource_get_user_data(region))
                        ->push_back({x, y, width, height});
                },
                [](wl_client*, wl_resource*, int, int, int, int) {}
        };
        make(client, wl_region_interface, 1, id, &kRequests, new std::vector<PixelRect>,
             [](wl_resource* region) {
                 delete static_cast<std::vector<PixelRect>*>(wl_resource_get_user_data(region));
             });
    }

    static void getLayer(wl_client* client, wl_resource*, std::uint32_t id, wl_resource* surface,
                         wl_resource*, std::uint32_t, const char*) {
        static constexpr struct zwlr_layer_surface_v1_interface kRequests {
            [](wl_client*, wl_resource*, std::uint32_t, std::uint32_t) {},
                [](wl_client*, wl_resource*, std::uint32_t) {},
                [](wl_client*, wl_resource*, int) {},
                [](wl_client*, wl_resource*, int, int, int, int) {},
                [](wl_client*, wl_resource*, std::uint32_t) {},
                [](wl_client*, wl_resource*, wl_resource*) {},
                [](wl_client*, wl_resource*, std::uint32_t) {}, destroy
        };
        surfaceOf(surface).layer =
            make(client, zwlr_layer_surface_v1_interface, 1, id, &kRequests, &surfaceOf(surface),
                 [](wl_resource* layer) { surfaceOf(layer).layer = nullptr; });
    }

    static void getViewport(wl_client* client, wl_resource*, std::uint32_t id,
                            wl_resource* surface) {
        static constexpr struct wp_viewport_interface kRequests {
            destroy, [](wl_client*, wl_resource*, int, int, int, int) {},
                [](wl_client*, wl_resource* viewport, int width, int height) {
                    surfaceOf(viewport).destination = {0, 0, width, height};
                }
        };
        make(client, wp_viewport_interface, 1, id, &kRequests, &surfaceOf(surface));
    }

    static void getDescription(wl_client* client, wl_resource*, std::uint32_t id, wl_resource* of) {
        static constexpr struct zxdg_output_v1_interface kRequests { destroy };
        const auto& output = *static_cast<TestCompositor::Output*>(wl_resource_get_user_data(of));
        wl_resource* const it = make(client, zxdg_output_v1_interface, 3, id, &kRequests, nullptr);
        zxdg_output_v1_send_logical_position(it, output.logical.x, output.logical.y);
        zxdg_output_v1_send_logical_size(it, output.logical.width, output.logical.height);
        wl_output_send_done(of);
    }

    static void bindSeat(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
        static constexpr struct wl_pointer_interface kPointer {
            [](wl_client*, wl_resource*, std::uint32_t, wl_resource*, int, int) {}, destroy
        };
        static constexpr struct wl_keyboard_interface kKeyboard { destroy };
        static constexpr struct wl_touch_interface kTouch { destroy };
        static constexpr struct wl_seat_interface kRequests {
            [](wl_client* of, wl_resource* seat, std::uint32_t it) {
                static_cast<TestCompositor*>(wl_resource_get_user_data(seat))->pointer_ =
                    make(of, wl_pointer_interface, 3, it, &kPointer, nullptr);
            },
                [](wl_client* of, wl_resource*, std::uint32_t it) {
                    make(of, wl_keyboard_interface, 3, it, &kKeyboard, nullptr);
                },
                [](wl_client* of, wl_resource* seat, std::uint32_t it) {
                    static_cast<TestCompositor*>(wl_resource_get_user_data(seat))->touch_ =
                        make(of, wl_touch_interface, 3, it, &kTouch, nullptr);
                },
                destroy
        };
        wl_seat_send_capabilities(
            make(client, wl_seat_interface, static_cast<int>(version), id, &kRequests, data),
            WL_SEAT_CAPABILITY_POINTER | WL_SEAT_CAPABILITY_KEYBOARD | WL_SEAT_CAPABILITY_TOUCH);
    }

    static void bindOutput(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
        static constexpr struct wl_output_interface kRequests { destroy };
        const auto& output = *static_cast<TestCompositor::Output*>(data);
        wl_resource* const it =
            make(client, wl_output_interface, static_cast<int>(version), id, &kRequests, data);
        wl_output_send_geometry(it, 0, 0, 300, 200, 0, "", "", output.transform);
        wl_output_send_mode(it, WL_OUTPUT_MODE_CURRENT, output.width, output.height, 60000);
        wl_output_send_scale(it, output.wholeScale);
        wl_output_send_done(it);
    }

    static void getLockNotification(wl_client* client, wl_resource* notifier, std::uint32_t id) {
        static constexpr struct hyprland_lock_notification_v1_interface kRequests { destroy };
        auto& self = *static_cast<TestCompositor*>(wl_resource_get_user_data(notifier));
        self.lockNotification_ =
            make(client, hyprland_lock_notification_v1_interface, 1, id, &kRequests, nullptr);
    }

    // A global whose only requests make one kind of object.
    template <const wl_interface& interface, int version, const auto& requests>
    static void offer(TestCompositor& self) {
        wl_global_create(self.display_, &interface, version, &self,
                         [](wl_client* client, void* data, std::uint32_t asked, std::uint32_t id) {
                             make(client, interface, static_cast<int>(asked), id, &requests, data);
                         });
    }

    static constexpr struct wl_compositor_interface kCompositor { createSurface, createRegion };
    static constexpr struct zwlr_layer_shell_v1_interface kLayerShell { getLayer };
    static constexpr struct wp_viewporter_interface kViewporter { destroy, getViewport };
    static constexpr struct zxdg_output_manager_v1_interface kOutputs { destroy, getDescription };
    static constexpr struct hyprland_lock_notifier_v1_interface kLocks {
        destroy, getLockNotification
    };
    static constexpr struct kde_lockscreen_overlay_v1_interface kOverlay {
        [](wl_client*, wl_resource*, wl_resource*) {}, destroy
    };

    static void offerAll(TestCompositor& self, bool hasKdeOverlay) {
        wl_display_init_shm(self.display_);
        offer<wl_compositor_interface, 4, kCompositor>(self);
        offer<zwlr_layer_shell_v1_interface, 1, kLayerShell>(self);
        offer<wp_viewporter_interface, 1, kViewporter>(self);
        offer<zxdg_output_manager_v1_interface, 3, kOutputs>(self);
        offer<hyprland_lock_notifier_v1_interface, 1, kLocks>(self);
        if (hasKdeOverlay) self.offerKdeOverlay();
        wl_global_create(self.display_, &wl_seat_interface, 7, &self, bindSeat);
    }
};

TestCompositor::TestCompositor(EventLoop& loop, bool hasKdeOverlay)
    : display_(wl_display_create()) {
    wl_display_add_socket(display_, "wayland-test");
    CompositorRequests::offerAll(*this, hasKdeOverlay);
    logger_ = wl_display_add_protocol_logger(
        display_,
        [](void* self, wl_protocol_logger_type type, const wl_protocol_logger_message* message) {
            if (type == WL_PROTOCOL_LOGGER_REQUEST)
                static_cast<TestCompositor*>(self)->requests.push_back(textOf(*message));
        },
        this);
    wl_event_loop* const events = wl_display_get_event_loop(display_);
    watch_ = loop.watch(wl_event_loop_get_fd(events), EPOLLIN,
                        [events](std::uint32_t) { wl_event_loop_dispatch(events, 0); });
    beforeSleep_ = loop.beforeSleep([this] { flush(); });
}

void TestCompositor::offerKdeOverlay() {
    CompositorRequests::offer<kde_lockscreen_overlay_v1_interface, 1, CompositorRequests::kOverlay>(
        *this);
}

void TestCompositor::flush() {
    if (display_) wl_display_flush_clients(display_);
}

void TestCompositor::end() {
    if (!display_) return;
    watch_.reset();
    beforeSleep_.reset();
    wl_protocol_logger_destroy(logger_);
    wl_display_destroy_clients(display_);
    wl_display_destroy(std::exchange(display_, nullptr));
}

TestCompositor::Output& TestCompositor::addOutput(Output output) {
    Output& added = outputs_.emplace_back(std::move(output));
    added.global =
        wl_global_create(display_, &wl_output_interface, 3, &added, CompositorRequests::bindOutput);
    return added;
}

void TestCompositor::remove(Output& output) { wl_global_remove(output.global); }

void TestCompositor::repaint() {
    for (Surface& surface : surfaces)
        for (wl_resource* const frame : std::exchange(surface.frames, {})) {
            wl_callback_send_done(frame, kTime);
            wl_resource_destroy(frame);
        }
    flush();
}

void TestCompositor::closeLayers() {
    for (Surface& surface : surfaces)
        if (surface.layer) zwlr_layer_surface_v1_send_closed(surface.layer);
}

void TestCompositor::enter(Point place) {
    wl_pointer_send_enter(pointer_, 1, surface().resource, wl_fixed_from_double(place.x),
                          wl_fixed_from_double(place.y));
}

void TestCompositor::button(std::uint32_t button, bool isDown) {
    wl_pointer_send_button(pointer_, 1, kTime, button, isDown ? 1 : 0);
}

void TestCompositor::move(Point place) {
    wl_pointer_send_motion(pointer_, kTime, wl_fixed_from_double(place.x),
                           wl_fixed_from_double(place.y));
}

void TestCompositor::touchDown(Point place) {
    wl_touch_send_down(touch_, 1, kTime, surface().resource, 7, wl_fixed_from_double(place.x),
                       wl_fixed_from_double(place.y));
}

void TestCompositor::touchUp() { wl_touch_send_up(touch_, 1, kTime, 7); }

void TestCompositor::tellLocked(bool isLocked) {
    if (isLocked)
        hyprland_lock_notification_v1_send_locked(lockNotification_);
    else
        hyprland_lock_notification_v1_send_unlocked(lockNotification_);
}

bool TestCompositor::heard(const std::string& beginning) const {
    return std::ranges::any_of(
        requests, [&](const std::string& request) { return request.starts_with(beginning); });
}

int TestCompositor::clientCount() const {
    return display_ ? wl_list_length(wl_display_get_client_list(display_)) : 0;
}

pid_t TestCompositor::clientProcess() const {
    pid_t process = 0;
    wl_client_get_credentials(wl_client_from_link(wl_display_get_client_list(display_)->next),
                              &process, nullptr, nullptr);
    return process;
}

}  // namespace quorvane

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

template <typename Data>
Data& dataOf(wl_resource* resource) {
    return *static_cast<Data*>(wl_resource_get_user_data(resource));
}

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

wl_resource* TestCompositor::make(wl_client* client, const wl_interface& interface, int version,
                                  std::uint32_t id, void* data, wl_resource_destroy_func_t gone) {
    wl_resource* const resource = wl_resource_create(client, &interface, version, id);
    const auto dispatch = [](const void* self, void* target, std::uint32_t,
                             const wl_message* message, wl_argument* arguments) {
        auto* const of = static_cast<wl_resource*>(target);
        static_cast<TestCompositor*>(const_cast<void*>(self))
            ->handle(of, std::string{wl_resource_get_class(of)} + "." + message->name, arguments);
        return 0;
    };
    wl_resource_set_dispatcher(resource, dispatch, this, data, gone);
    return resource;
}

// Ignores all other requests.
void TestCompositor::handle(wl_resource* of, const std::string& request,
                            const wl_argument* arguments) {
    using Region = std::vector<PixelRect>;
    wl_client* const client = wl_resource_get_client(of);
    const auto object = [&](int index) {
        return reinterpret_cast<wl_resource*>(arguments[index].o);
    };
    const auto area = [&] {
        return PixelRect{arguments[0].i, arguments[1].i, arguments[2].i, arguments[3].i};
    };
    const auto surfaceOf = [](wl_resource* resource) -> Surface& {
        return dataOf<Surface>(resource);
    };
    if (request.ends_with(".destroy") || request.ends_with(".release")) {
        wl_resource_destroy(of);
    } else if (request == "wl_compositor.create_surface") {
        auto& surface = surfaces.emplace_back();
        surface.resource =
            make(client, wl_surface_interface, wl_resource_get_version(of), arguments[0].n,
                 &surface, [](wl_resource* gone) { dataOf<Surface>(gone).resource = nullptr; });
    } else if (request == "wl_compositor.create_region") {
        make(client, wl_region_interface, 1, arguments[0].n, new Region,
             [](wl_resource* region) { delete &dataOf<Region>(region); });
    } else if (request == "wl_region.add") {
        dataOf<Region>(of).push_back(area());
    } else if (request == "wl_surface.attach") {
        surfaceOf(of).buffer = object(0);
    } else if (request == "wl_surface.frame") {
        surfaceOf(of).frames.push_back(make(client, wl_callback_interface, 1, arguments[0].n));
    } else if (request == "wl_surface.set_input_region") {
        surfaceOf(of).input = dataOf<Region>(object(0));
    } else if (request == "wl_surface.damage_buffer") {
        surfaceOf(of).damage.push_back(area());
    } else if (request == "wl_surface.commit") {
        commit(surfaceOf(of));
    } else if (request == "zwlr_layer_shell_v1.get_layer_surface") {
        Surface& surface = surfaceOf(object(1));
        surface.layer = make(client, zwlr_layer_surface_v1_interface, 1, arguments[0].n, &surface,
                             [](wl_resource* layer) { dataOf<Surface>(layer).layer = nullptr; });
    } else if (request == "wp_viewporter.get_viewport") {
        make(client, wp_viewport_interface, 1, arguments[0].n, &surfaceOf(object(1)));
    } else if (request == "wp_viewport.set_destination") {
        surfaceOf(of).destination = {0, 0, arguments[0].i, arguments[1].i};
    } else if (request == "zxdg_output_manager_v1.get_xdg_output") {
        const PixelRect& logical = dataOf<Output>(object(1)).logical;
        wl_resource* const it = make(client, zxdg_output_v1_interface, 3, arguments[0].n);
        zxdg_output_v1_send_logical_position(it, logical.x, logical.y);
        zxdg_output_v1_send_logical_size(it, logical.width, logical.height);
        wl_output_send_done(object(1));
    } else if (request == "wl_seat.get_pointer") {
        pointer_ = make(client, wl_pointer_interface, 3, arguments[0].n);
    } else if (request == "wl_seat.get_touch") {
        touch_ = make(client, wl_touch_interface, 3, arguments[0].n);
    } else if (request == "hyprland_lock_notifier_v1.get_lock_notification") {
        lockNotification_ =
            make(client, hyprland_lock_notification_v1_interface, 1, arguments[0].n);
    }
}

void TestCompositor::commit(Surface& surface) {
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

wl_global* TestCompositor::offer(const wl_interface& interface, int version, Output* output) {
    const auto bind = [](wl_client* client, void* data, std::uint32_t asked, std::uint32_t id) {
        const Offer& made = *static_cast<Offer*>(data);
        wl_resource* const it =
            made.self->make(client, *made.interface, static_cast<int>(asked), id, made.output);
        if (made.interface == &wl_seat_interface)
            wl_seat_send_capabilities(it, WL_SEAT_CAPABILITY_POINTER | WL_SEAT_CAPABILITY_KEYBOARD |
                                              WL_SEAT_CAPABILITY_TOUCH);
        const Output* const shown = made.output;
        if (!shown) return;
        wl_output_send_geometry(it, 0, 0, 300, 200, 0, "", "", shown->transform);
        wl_output_send_mode(it, WL_OUTPUT_MODE_CURRENT, shown->width, shown->height, 60000);
        wl_output_send_scale(it, shown->wholeScale);
        wl_output_send_done(it);
    };
    return wl_global_create(display_, &interface, version,
                            &offers_.emplace_back(Offer{this, &interface, output}), bind);
}

TestCompositor::TestCompositor(EventLoop& loop, bool hasKdeOverlay)
    : display_(wl_display_create()) {
    wl_display_add_socket(display_, "wayland-test");
    wl_display_init_shm(display_);
    offer(wl_compositor_interface, 4);
    offer(zwlr_layer_shell_v1_interface, 1);
    offer(wp_viewporter_interface, 1);
    offer(zxdg_output_manager_v1_interface, 3);
    offer(hyprland_lock_notifier_v1_interface, 1);
    offer(wl_seat_interface, 7);
    if (hasKdeOverlay) offerKdeOverlay();
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

void TestCompositor::offerKdeOverlay() { offer(kde_lockscreen_overlay_v1_interface, 1); }

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
    added.global = offer(wl_output_interface, 3, &added);
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

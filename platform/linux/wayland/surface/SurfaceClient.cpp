#include "platform/linux/wayland/surface/SurfaceClient.hpp"

#include <poll.h>
#include <sys/time.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

namespace quorvane {
namespace {

// The newest versions whose events are handled here.
constexpr std::uint32_t kCompositor = 4;  // damage in the picture's pixels
constexpr std::uint32_t kOutput = 3;      // the scale, and the end of a change's events
constexpr std::uint32_t kOutputManager = 3;
constexpr std::uint32_t kSeat = 3;  // the pointer's release

template <typename Object>
void bind(Wayland<Object>& object, wl_registry* registry, std::uint32_t name,
          const wl_interface& interface, std::uint32_t version = 1) {
    object.reset(static_cast<Object*>(wl_registry_bind(registry, name, &interface, version)));
}

}  // namespace

const wl_registry_listener SurfaceClient::kRegistryListener{
    .global =
        [](void* self, wl_registry*, std::uint32_t name, const char* interface,
           std::uint32_t version) {
            static_cast<SurfaceClient*>(self)->appeared(name, interface, version);
        },
    .global_remove = [](void* self, wl_registry*,
                        std::uint32_t name) { static_cast<SurfaceClient*>(self)->vanished(name); },
};

void SurfaceClient::run() {
    if (!connect()) return fail("the compositor cannot be reached");
    for (;;) {
        while (wl_display_prepare_read(display_.get()) != 0)
            if (wl_display_dispatch_pending(display_.get()) < 0) return fail("a protocol error");
        const bool isSent = wl_display_flush(display_.get()) >= 0;
        if (!isSent && errno != EAGAIN) break;
        const short wanted = static_cast<short>(isSent ? POLLIN : POLLIN | POLLOUT);
        pollfd ends[] = {{wl_display_get_fd(display_.get()), wanted, 0},
                         {socket_.descriptor(), POLLIN, 0}};
        if (poll(ends, std::size(ends), -1) < 0) ends[0].revents = ends[1].revents = 0;
        if (!handleEvents(ends[0].revents)) break;
        if (ends[1].revents != 0 && !handleMessages()) return;
    }
    fail("the compositor has ended the connection");
}

bool SurfaceClient::connect() {
    display_.reset(wl_display_connect(nullptr));
    if (!display_) return false;
    registry_.reset(wl_display_get_registry(display_.get()));
    wl_registry_add_listener(registry_.get(), &kRegistryListener, this);
    askToStart(&SurfaceClient::globalsKnown);
    return true;
}

// Takes the next step once the compositor has answered everything before.
void SurfaceClient::askToStart(void (SurfaceClient::*step)()) {
    static constexpr wl_callback_listener kAnswered{[](void* data, wl_callback*, std::uint32_t) {
        auto& self = *static_cast<SurfaceClient*>(data);
        (self.*self.nextStep_)();
    }};
    nextStep_ = step;
    start_.reset(wl_display_sync(display_.get()));
    wl_callback_add_listener(start_.get(), &kAnswered, this);
}

bool SurfaceClient::handleEvents(short ready) {
    if ((ready & (POLLIN | POLLERR | POLLHUP)) != 0) {
        if (wl_display_read_events(display_.get()) < 0) return false;
    } else {
        wl_display_cancel_read(display_.get());
    }
    return wl_display_dispatch_pending(display_.get()) >= 0;
}

bool SurfaceClient::handleMessages() {
    for (;;) {
        ToSurface request;
        FileDescriptor file;
        switch (socket_.receive(request, &file)) {
            case MessageSocket::Received::nothing: return true;
            case MessageSocket::Received::ended: return false;
            case MessageSocket::Received::message: break;
        }
        perform(request, std::move(file));
        armLimit();
    }
}

// The kernel ends this process at the limit, also if it hangs. Without a surface there is nothing
// to end, so the add-on need not wake for it.
void SurfaceClient::armLimit() const {
    itimerval limit{};
    if (!surfaces_.empty()) {
        limit.it_value.tv_sec = kBeatLimit.count() / 1000;
        limit.it_value.tv_usec = kBeatLimit.count() % 1000 * 1000;
    }
    setitimer(ITIMER_REAL, &limit, nullptr);
}

void SurfaceClient::perform(const ToSurface& request, FileDescriptor file) {
    CardSurface* const surface = surfaceOf(request.surface);
    switch (request.kind) {
        case ToSurface::Kind::beat: return;
        case ToSurface::Kind::open:
            if (!surface && file) open(request, std::move(file));
            return;
        case ToSurface::Kind::input:
            if (surface) surface->setInput(request.parts);
            return;
        case ToSurface::Kind::show:
            if (surface) surface->show(request);
            return;
        case ToSurface::Kind::close:
            surfaces_.remove_if([&](const CardSurface& each) { return &each == surface; });
            return;
    }
}

void SurfaceClient::open(const ToSurface& request, FileDescriptor memory) {
    const auto output = std::ranges::find(outputs_, request.output, &OutputInfo::name);
    if (output == outputs_.end() || request.width <= 0 || request.height <= 0)
        return send({.kind = FromSurface::Kind::closed, .surface = request.surface});
    surfaces_.emplace_back(globals_, output->output(), request, std::move(memory),
                           [this](const FromSurface& message) { send(message); });
}

CardSurface* SurfaceClient::surfaceOf(std::uint32_t number) {
    const auto found = std::ranges::find(surfaces_, number, &CardSurface::number);
    return found == surfaces_.end() ? nullptr : &*found;
}

void SurfaceClient::appeared(std::uint32_t name, const char* interface, std::uint32_t version) {
    wl_registry* const registry = registry_.get();
    const std::string_view kind = interface;
    if (kind == wl_compositor_interface.name && version >= kCompositor)
        bind(globals_.compositor, registry, name, wl_compositor_interface, kCompositor);
    else if (kind == wl_shm_interface.name)
        bind(globals_.shm, registry, name, wl_shm_interface);
    else if (kind == zwlr_layer_shell_v1_interface.name)
        bind(globals_.layerShell, registry, name, zwlr_layer_shell_v1_interface);
    else if (kind == kde_lockscreen_overlay_v1_interface.name)
        bind(globals_.kdeOverlay, registry, name, kde_lockscreen_overlay_v1_interface);
    else if (kind == wp_viewporter_interface.name)
        bind(globals_.viewporter, registry, name, wp_viewporter_interface);
    else if (kind == zxdg_output_manager_v1_interface.name)
        bind(outputManager_, registry, name, zxdg_output_manager_v1_interface,
             std::min(version, kOutputManager));
    else if (kind == wl_seat_interface.name && version >= kSeat)
        addSeat(name);
    else if (kind == wl_output_interface.name && version >= 2)
        addOutput(name, std::min(version, kOutput));
}

void SurfaceClient::addSeat(std::uint32_t name) {
    Wayland<wl_seat> seat;
    bind(seat, registry_.get(), name, wl_seat_interface, kSeat);
    seats_.emplace_back(std::move(seat), name, [this](wl_surface* surface, FromSurface message) {
        const auto card = std::ranges::find(surfaces_, surface, &CardSurface::surface);
        if (card == surfaces_.end()) return;
        message.surface = card->number();
        send(message);
    });
}

void SurfaceClient::addOutput(std::uint32_t name, std::uint32_t version) {
    Wayland<wl_output> output;
    bind(output, registry_.get(), name, wl_output_interface, version);
    OutputInfo& info = outputs_.emplace_back(std::move(output), name, [this](const OutputInfo& it) {
        if (isStarted_) report(it);
    });
    if (isStarted_) describe(info);
}

void SurfaceClient::describe(OutputInfo& output) {
    if (globals_.viewporter) output.allowFractions();
    if (outputManager_) output.describeWith(outputManager_.get());
}

void SurfaceClient::report(const OutputInfo& output) const {
    send({.kind = FromSurface::Kind::output,
          .output = output.name(),
          .place = output.place(),
          .scale = output.scale()});
}

void SurfaceClient::vanished(std::uint32_t name) {
    seats_.remove_if([&](const SeatInput& seat) { return seat.name() == name; });
    if (outputs_.remove_if([&](const OutputInfo& output) { return output.name() == name; }) == 0)
        return;
    if (isStarted_) send({.kind = FromSurface::Kind::outputGone, .output = name});
}

// All globals are known now. A second answer follows the events of the outputs.
void SurfaceClient::globalsKnown() {
    if (!globals_.compositor || !globals_.shm || !globals_.layerShell) {
        fail("the compositor has no layer shell");
        std::exit(EXIT_FAILURE);
    }
    for (OutputInfo& output : outputs_) describe(output);
    askToStart(&SurfaceClient::outputsKnown);
}

void SurfaceClient::outputsKnown() {
    isStarted_ = true;
    start_.reset();
    for (const OutputInfo& output : outputs_) report(output);
    send({.kind = FromSurface::Kind::ready, .hasKdeOverlay = globals_.kdeOverlay != nullptr});
}

void SurfaceClient::fail(const char* reason) const {
    FromSurface message{.kind = FromSurface::Kind::failed};
    std::strncpy(message.text.data(), reason, message.text.size() - 1);
    send(message);
}

}  // namespace quorvane

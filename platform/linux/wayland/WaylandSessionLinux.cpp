#include "platform/linux/wayland/WaylandSessionLinux.hpp"

#include <sys/epoll.h>

#include <algorithm>
#include <utility>

#include "lockers/GreeterZones.hpp"
#include "lockers/KdeSettings.hpp"
#include "platform/RegularFiles.hpp"
#include "platform/linux/files/FoldersLinux.hpp"

namespace quorvane {
namespace {

constexpr int kRestarts = 10;  // during one lock
constexpr Duration kRestartDelay = std::chrono::seconds{1};
constexpr std::uint64_t kLargestSettings = 1 << 20;

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

std::string kdeSettings() {
    const auto file =
        makeLiveRegularFiles().read(configFolder().value_or("") / "kdeglobals", kLargestSettings);
    return std::string{file ? textOf(file->contents) : ""};
}

const wl_registry_listener WaylandSessionLinux::kRegistryListener{
    .global =
        [](void* self, wl_registry*, std::uint32_t name, const char* interface,
           std::uint32_t version) {
            static_cast<WaylandSessionLinux*>(self)->appeared(name, interface, version);
        },
    .global_remove =
        [](void* self, wl_registry*, std::uint32_t name) {
            static_cast<WaylandSessionLinux*>(self)->vanished(name);
        },
};

WaylandSessionLinux::WaylandSessionLinux(EventLoop& loop, std::filesystem::path program,
                                         const WaylandSupport& support, Logger log)
    : loop_(loop),
      clock_(loop.clock()),
      program_(std::move(program)),
      support_(support),
      log_(std::move(log)) {}

void WaylandSessionLinux::setLocked(bool isLocked) {
    restart_.reset();
    restartsLeft_ = isLocked ? kRestarts : 0;
    if (!isLocked)
        disconnect();
    else if (!connection_)
        start();
}

void WaylandSessionLinux::start() {
    auto process = SurfaceProcess::start(program_);
    if (!process)
        return log_.error("wayland: no surface process: %{public}s", process.error().description);
    if (support_.needsKdeOverlay) unit_ = greeterUnit(kdeSettings());
    connection_ = std::make_unique<Connection>();
    connection_->process = *std::move(process);
    connection_->notices = loop_.watch(
        connection_->process->notices(), EPOLLIN,
        [this](std::uint32_t) { connection_->process->hasConnected() ? connected() : ended(); });
}

void WaylandSessionLinux::connected() {
    wl_display* const display = wl_display_connect_to_fd(connection_->process->takeConnection());
    connection_->display.reset(display);
    connection_->beforeSleep = loop_.beforeSleep([this] { exchange(); });
    connection_->registry.reset(wl_display_get_registry(display));
    wl_registry_add_listener(connection_->registry.get(), &kRegistryListener, this);
    static constexpr wl_callback_listener kAnswered{[](void* self, wl_callback*, std::uint32_t) {
        static_cast<WaylandSessionLinux*>(self)->globalsKnown();
    }};
    afterAnswer(kAnswered);
}

// A compositor that does not read counts as ended.
void WaylandSessionLinux::exchange() {
    if (nextBeat_ && clock_.now() - lastBeat_ >= kBeat / 2) beat();
    wl_display* const display = connection_->display.get();
    if ((!connection_->watch && !dispatch()) || wl_display_flush(display) < 0) return ended();
    if (std::exchange(connection_->mayEventsWait, false))
        connection_->watch.reset();
    else if (!connection_->watch)
        connection_->watch = loop_.watch(wl_display_get_fd(display), EPOLLIN, [this](auto) {
            if (!dispatch()) ended();
        });
}

// Without waiting for events.
bool WaylandSessionLinux::dispatch() const {
    wl_display* const display = connection_->display.get();
    if (wl_display_prepare_read(display) == 0 && wl_display_read_events(display) < 0) return false;
    return wl_display_dispatch_pending(display) >= 0;
}

// Ends the connection and kills the process.
void WaylandSessionLinux::disconnect() {
    nextBeat_.reset();
    while (!surfaces_.empty()) {
        CardSurface& surface = *surfaces_.back();
        surfaces_.pop_back();
        surface.end();  // may destroy others too
    }
    connection_.reset();
}

// The process ends when the compositor goes away, or when this one was stopped for too long.
void WaylandSessionLinux::ended() {
    log_.error("wayland: the connection to the compositor has ended");
    disconnect();
    changes_.call();  // the cards are built again once the screens are back
    restartSoon();
}

void WaylandSessionLinux::restartSoon() {
    if (restartsLeft_-- > 0) restart_ = clock_.after(kRestartDelay, [this] { start(); });
}

void WaylandSessionLinux::appeared(std::uint32_t name, std::string_view interface,
                                   std::uint32_t version) {
    wl_registry* const registry = connection_->registry.get();
    SurfaceGlobals& globals = connection_->globals;
    if (interface == wl_compositor_interface.name && version >= kCompositor)
        bind(globals.compositor, registry, name, wl_compositor_interface, kCompositor);
    else if (interface == wl_shm_interface.name)
        bind(globals.shm, registry, name, wl_shm_interface);
    else if (interface == zwlr_layer_shell_v1_interface.name)
        bind(globals.layerShell, registry, name, zwlr_layer_shell_v1_interface);
    else if (interface == kde_lockscreen_overlay_v1_interface.name)
        bind(globals.kdeOverlay, registry, name, kde_lockscreen_overlay_v1_interface);
    else if (interface == wp_viewporter_interface.name)
        bind(globals.viewporter, registry, name, wp_viewporter_interface);
    else if (interface == zxdg_output_manager_v1_interface.name)
        bind(connection_->outputManager, registry, name, zxdg_output_manager_v1_interface,
             std::min(version, kOutputManager));
    else if (interface == wl_seat_interface.name && version >= kSeat)
        addSeat(name);
    else if (interface == wl_output_interface.name && version >= 2)
        addOutput(name, std::min(version, kOutput));
}

void WaylandSessionLinux::addSeat(std::uint32_t name) {
    Wayland<wl_seat> seat;
    bind(seat, connection_->registry.get(), name, wl_seat_interface, kSeat);
    connection_->seats.emplace_back(
        std::move(seat), name, [this](wl_surface* under, const SurfacePress& press) {
            const auto card = std::ranges::find(surfaces_, under, &CardSurface::surface);
            if (card != surfaces_.end()) (*card)->pressed(press);
        });
}

void WaylandSessionLinux::addOutput(std::uint32_t name, std::uint32_t version) {
    Wayland<wl_output> output;
    bind(output, connection_->registry.get(), name, wl_output_interface, version);
    OutputInfo& info =
        connection_->outputs.emplace_back(std::move(output), name, [this] { outputsChanged(); });
    if (connection_->isReady) info.describeWith(connection_->outputManager.get());
}

void WaylandSessionLinux::vanished(std::uint32_t name) {
    connection_->seats.remove_if([&](const SeatInput& seat) { return seat.name() == name; });
    if (connection_->outputs.remove_if(
            [&](const OutputInfo& output) { return output.name() == name; }) > 0)
        outputsChanged();
}

// Continues once the compositor has answered all earlier requests.
void WaylandSessionLinux::afterAnswer(const wl_callback_listener& next) {
    connection_->start.reset(wl_display_sync(connection_->display.get()));
    wl_callback_add_listener(connection_->start.get(), &next, this);
}

// A second answer follows the events of the outputs.
void WaylandSessionLinux::globalsKnown() {
    const SurfaceGlobals& globals = connection_->globals;
    if (!globals.compositor || !globals.shm || !globals.layerShell || !connection_->outputManager)
        return log_.error("wayland: the compositor has no layer shell, or does not report outputs");
    if (support_.needsKdeOverlay && !globals.kdeOverlay) {
        // KWin looks for new desktop files at most every 1.5 s.
        if (restartsLeft_ > kRestarts - 2) return restartSoon();
        return log_.error(
            "wayland: KDE Plasma does not let the card above its lock screen; run: quorvane-host "
            "install");
    }
    for (OutputInfo& output : connection_->outputs)
        output.describeWith(connection_->outputManager.get());
    static constexpr wl_callback_listener kAnswered{[](void* self, wl_callback*, std::uint32_t) {
        static_cast<WaylandSessionLinux*>(self)->outputsKnown();
    }};
    afterAnswer(kAnswered);
}

void WaylandSessionLinux::outputsKnown() {
    connection_->start.reset();
    connection_->isReady = true;
    changes_.call();
}

void WaylandSessionLinux::outputsChanged() {
    if (connection_->isReady) changes_.call();
}

Screen WaylandSessionLinux::screenOf(const OutputInfo& output) const {
    const bool hasViewports = connection_->globals.viewporter != nullptr;
    return screenOfOutput(output.place(), output.scale(hasViewports), unit_);
}

Screens WaylandSessionLinux::screens() {
    return {
        .list =
            [this] {
                std::vector<Screen> screens;
                if (!connection_ || !connection_->isReady) return screens;
                for (const OutputInfo& output : connection_->outputs) {
                    if (!output.isKnown()) continue;
                    const Screen screen = screenOf(output);
                    // Several outputs that show the same picture are one screen.
                    if (std::ranges::find(screens, screen.frame, &Screen::frame) == screens.end())
                        screens.push_back(screen);
                }
                return screens;
            },
        .observeChanges =
            [this](std::function<void()> handler) { return changes_.add(std::move(handler)); },
        // The zones change only with the outputs.
        .observeKeepClear = [](const std::function<void()>&) { return Handle{}; },
        // The compositor then asks for no frames, which the windows report.
        .observeUnseen = [](const auto&) { return Handle{}; }};
}

std::unique_ptr<WaylandSurface> WaylandSessionLinux::open(const Screen& screen,
                                                          const SurfaceRequest& request,
                                                          SurfaceEvents events) {
    if (!connection_ || !connection_->isReady) return nullptr;
    const auto output =
        std::ranges::find(connection_->outputs, screen.frame,
                          [this](const OutputInfo& each) { return screenOf(each).frame; });
    if (output == connection_->outputs.end()) return nullptr;
    auto surface = std::make_unique<CardSurface>(
        connection_->globals, output->output(), support_.layerNamespace, request, std::move(events),
        [this](CardSurface& it) { surfaceGone(it); });
    surfaces_.push_back(surface.get());
    if (!nextBeat_) beat();
    return surface;
}

void WaylandSessionLinux::surfaceGone(CardSurface& surface) {
    std::erase(surfaces_, &surface);
    if (!surfaces_.empty() || !nextBeat_) return;
    nextBeat_.reset();
    connection_->process->endAfter(Duration::zero());
}

void WaylandSessionLinux::beat() {
    connection_->process->endAfter(kBeatLimit);
    lastBeat_ = clock_.now();
    nextBeat_ = clock_.afterAbout(kBeat, kBeat / 10, [this] { beat(); });
}

}  // namespace quorvane

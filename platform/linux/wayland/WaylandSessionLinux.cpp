#include "platform/linux/wayland/WaylandSessionLinux.hpp"

#include <algorithm>
#include <utility>

#include "lockers/GreeterZones.hpp"

namespace quorvane {
namespace {

constexpr int kRestarts = 10;  // during one lock
constexpr Duration kRestartDelay = std::chrono::seconds{1};

Rect rectOf(const PixelRect& rect) {
    return {static_cast<double>(rect.x), static_cast<double>(rect.y),
            static_cast<double>(rect.width), static_cast<double>(rect.height)};
}

}  // namespace

WaylandSessionLinux::WaylandSessionLinux(EventLoop& loop, std::filesystem::path program, Logger log)
    : loop_(loop), clock_(loop.clock()), program_(std::move(program)), log_(std::move(log)) {}

void WaylandSessionLinux::setLocked(bool isLocked) {
    restart_.reset();
    restartsLeft_ = isLocked ? kRestarts : 0;
    if (isLocked && !process_) return start();
    if (isLocked) return;
    process_.reset();
    forgetSurfaces();
}

void WaylandSessionLinux::start() {
    auto process =
        SurfaceProcess::start(loop_, program_,
                              {.message = [this](const FromSurface& message) { handle(message); },
                               .ended = [this] { ended(); }});
    if (process)
        process_ = *std::move(process);
    else
        log_.error("wayland: no surface process: %{public}s", process.error().description);
}

// It ends by itself when the compositor goes away, or when this process has not answered in time.
void WaylandSessionLinux::ended() {
    process_.reset();
    log_.error("wayland: the surface process has ended");
    forgetSurfaces();
    changes_.call();  // the cards are built again once the screens are back
    if (restartsLeft_-- > 0) restart_ = clock_.after(kRestartDelay, [this] { start(); });
}

void WaylandSessionLinux::forgetSurfaces() {
    nextBeat_.reset();
    isReady_ = false;
    outputs_.clear();
    for (const auto& [number, events] : std::exchange(surfaces_, {})) events.closed();
}

void WaylandSessionLinux::handle(const FromSurface& message) {
    using Kind = FromSurface::Kind;
    switch (message.kind) {
        case Kind::output:
        case Kind::outputGone: return outputChanged(message);
        case Kind::ready: return ready(message.hasKdeOverlay);
        case Kind::failed:
            return log_.error("wayland: %{public}s", std::string{message.text.data()});
        default: break;
    }
    const auto found = surfaces_.find(message.surface);
    if (found == surfaces_.end()) return;
    // A copy, because a handler may close the surface.
    const SurfaceEvents events = found->second;
    switch (message.kind) {
        case Kind::frame: return events.frame();
        case Kind::released: return events.released(message.picture);
        case Kind::closed: close(message.surface); return events.closed();
        default: return events.pointer(message);
    }
}

void WaylandSessionLinux::outputChanged(const FromSurface& message) {
    const auto known = std::ranges::find(outputs_, message.output, &Output::name);
    if (message.kind == FromSurface::Kind::outputGone) {
        if (known == outputs_.end()) return;
        outputs_.erase(known);
    } else {
        const Output output{message.output, rectOf(message.place), message.scale};
        if (known == outputs_.end())
            outputs_.push_back(output);
        else if (known->place == output.place && known->scale == output.scale)
            return;
        else
            *known = output;
    }
    if (isReady_) changes_.call();
}

void WaylandSessionLinux::ready(bool hasKdeOverlay) {
    if (!hasKdeOverlay)
        return log_.error(
            "wayland: KDE Plasma does not let the card above its lock screen; run: quorvane-host "
            "install");
    isReady_ = true;
    changes_.call();
}

std::vector<Screen> WaylandSessionLinux::list() const {
    std::vector<Screen> screens;
    if (!isReady_) return screens;
    for (const Output& output : outputs_)
        screens.push_back(screenOfOutput(output.place, output.scale));
    return screens;
}

Screens WaylandSessionLinux::screens() {
    return {.list = [this] { return list(); },
            .observeChanges =
                [this](std::function<void()> handler) { return changes_.add(std::move(handler)); },
            // The zones change only with the outputs.
            .observeKeepClear = [](const std::function<void()>&) { return Handle{}; },
            // The compositor then asks for no frames, which the windows report.
            .observeUnseen = [](const auto&) { return Handle{}; }};
}

std::uint32_t WaylandSessionLinux::open(const Screen& screen, ToSurface request, int memory,
                                        SurfaceEvents events) {
    const std::vector<Screen> screens = list();
    const auto found = std::ranges::find(screens, screen.frame, &Screen::frame);
    if (found == screens.end() || !process_) return 0;
    request.kind = ToSurface::Kind::open;
    request.surface = ++surfacesMade_;
    request.output = outputs_[static_cast<std::size_t>(found - screens.begin())].name;
    process_->send(request, memory);
    surfaces_.emplace(request.surface, std::move(events));
    if (!nextBeat_) beat();
    return request.surface;
}

void WaylandSessionLinux::send(const ToSurface& message) {
    if (process_ && surfaces_.contains(message.surface)) process_->send(message);
}

void WaylandSessionLinux::close(std::uint32_t surface) {
    send({.kind = ToSurface::Kind::close, .surface = surface});
    surfaces_.erase(surface);
    if (surfaces_.empty()) nextBeat_.reset();
}

void WaylandSessionLinux::beat() {
    process_->send({.kind = ToSurface::Kind::beat});
    nextBeat_ = clock_.after(kBeat, [this] { beat(); });
}

}  // namespace quorvane

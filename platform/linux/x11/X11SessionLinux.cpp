#include "platform/linux/x11/X11SessionLinux.hpp"

#include <utility>

namespace quorvane {

Result<std::unique_ptr<X11SessionLinux>> X11SessionLinux::open(EventLoop& loop,
                                                               const std::string& display,
                                                               std::function<void()> onLost) {
    auto x11 = X11Connection::open(loop, display, std::move(onLost));
    if (!x11) return std::unexpected(std::move(x11).error());
    return std::unique_ptr<X11SessionLinux>{new X11SessionLinux(*std::move(x11), loop.clock())};
}

X11SessionLinux::X11SessionLinux(std::unique_ptr<X11Connection> x11, const Clock& clock)
    : x11_(std::move(x11)),
      monitors_(*x11_, clock),
      lockers_(*x11_, monitors_, clock),
      pointer_(*x11_) {}

LockScreenDetector X11SessionLinux::detector() {
    return {
        .isDetected = [this] { return !lockers_.windows().empty(); },
        .observe =
            [this](std::function<void()> changed) { return lockers_.observe(std::move(changed)); }};
}

Screens X11SessionLinux::screens() {
    return {
        .list = [this] { return monitors_.layout().screens(lockers_.zones()); },
        .observeChanges =
            [this](std::function<void()> handler) { return monitors_.observe(std::move(handler)); },
        .observeKeepClear =
            [this](std::function<void()> handler) {
                return lockers_.observeZones(std::move(handler));
            },
        .observeUnseen =
            [this](std::function<void(Unseen, bool)> handler) {
                return monitors_.observeBlanking([handler = std::move(handler)](bool isBlank) {
                    handler(Unseen::displaysAsleep, isBlank);
                });
            }};
}

}  // namespace quorvane

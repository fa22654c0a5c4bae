#include "Quorvane_Lock_Screen/CardWindow.hpp"

#include "QuorvaneKit/link/Identifiers.hpp"

namespace quorvane {
namespace {

constexpr std::uint64_t kNonactivatingPanel = 128;
constexpr std::int64_t kScreenSaverLevel = 1000;
// Can join all spaces 1, stationary 16, ignores cycle 64, full-screen auxiliary 256.
constexpr std::uint64_t kCollectionBehavior = 337;

}  // namespace

WindowSettings CardWindow::settings(const Rect& frame, double contentScale) {
    return {.frame = frame,
            .contentScale = contentScale,
            .styleMask = kNonactivatingPanel,
            .becomesKeyOnlyIfNeeded = true,
            .isOpaque = false,
            .hasShadow = false,  // the card draws its own
            .hasDarkAppearance = true,
            .level = kScreenSaverLevel,
            .collectionBehavior = kCollectionBehavior,
            .isReleasedWhenClosed = false,
            .hidesOnDeactivate = false,
            .acceptsMouseMovedEvents = true,
            .alpha = 0,
            .ignoresMouseEvents = true};
}

CardWindow::CardWindow(std::unique_ptr<CardSystemWindow> window, const LogSink& log)
    : window_(std::move(window)) {
    window_->setMouseDownObserver([logger = Logger{log, kAddOnBundleIdentifier, "presenter"},
                                   number = window_->number()](Point location) {
        logger.debug("window %ld mouse down at %{public}s", number, describe(location));
    });
}

}  // namespace quorvane

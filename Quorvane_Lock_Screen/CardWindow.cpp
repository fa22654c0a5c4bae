#include "Quorvane_Lock_Screen/CardWindow.hpp"

namespace quorvane::CardWindow {
namespace {

constexpr std::uint64_t kNonactivatingPanel = 128;
constexpr std::int64_t kScreenSaverLevel = 1000;
// Can join all spaces 1, stationary 16, ignores cycle 64, full-screen auxiliary 256.
constexpr std::uint64_t kCollectionBehavior = 337;

}  // namespace

WindowSettings settings(const Rect& frame, double contentScale) {
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

}  // namespace quorvane::CardWindow

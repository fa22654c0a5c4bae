// One card's window: borderless, above all other windows, never key or main, so that the lock
// screen keeps the keyboard.
#pragma once

#include <memory>

#include "drawing/CardWindows.hpp"
#include "platform/Log.hpp"

namespace quorvane {

// Main thread only. Owned by the controller's entry.
class CardWindow {
public:
    // The settings of every card window; the frame is in global points, y growing upward.
    static WindowSettings settings(const Rect& frame, double contentScale = 1);

    CardWindow(std::unique_ptr<CardSystemWindow> window, const LogSink& log);

    CardSystemWindow& system() { return *window_; }
    long number() const { return window_->number(); }

private:
    std::unique_ptr<CardSystemWindow> window_;
};

}  // namespace quorvane

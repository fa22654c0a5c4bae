// Running the main loop for as long as a test waits for something.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "platform/linux/loop/EventLoop.hpp"

namespace quorvane {

// Runs the loop until the condition holds. False when the deadline passes first, as only in a
// failing test. The condition is checked each time before the loop sleeps.
inline bool runUntil(EventLoop& loop, const std::function<bool()>& isDone,
                     Duration deadline = std::chrono::seconds{20}) {
    if (isDone()) return true;
    const auto isWaiting = std::make_shared<bool>(true);
    const auto finish = [&loop, isWaiting](int status) {
        if (std::exchange(*isWaiting, false)) loop.quit(status);
    };
    const Handle check = loop.beforeSleep([&] {
        // Posted, because an action before the sleep does not prevent the sleep.
        if (isDone()) loop.mainThread().post([finish] { finish(0); });
    });
    const Timer late = loop.clock().after(deadline, [finish] { finish(1); });
    return loop.run() == 0;
}

// Handles pending events, and the actions that they post.
inline void runOnce(EventLoop& loop) {
    for (int turn = 0; turn < 2; ++turn) {
        loop.mainThread().post([&loop] { loop.quit(0); });
        loop.run();
    }
}

}  // namespace quorvane

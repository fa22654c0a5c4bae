// The way back to the main thread, and on the main thread the way to "after the current pass".
#pragma once

#include <functional>

namespace quorvane {

// `post` may be called from any thread; actions run on the main thread in the order of posting,
// never inside the call. Actions that are still waiting when the main loop ends are dropped.
struct MainThread {
    std::function<void(std::function<void()> action)> post;
};

}  // namespace quorvane

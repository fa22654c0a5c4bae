// Queue of actions for the main thread. Code on the main thread uses it to run an action after the
// current turn of the loop.
#pragma once

#include <functional>

namespace quorvane {

// `post` may be called from any thread; actions run on the main thread in the order of posting,
// never inside the call. Actions still pending when the main loop ends are dropped.
struct MainThread {
    std::function<void(std::function<void()> action)> post;
};

}  // namespace quorvane

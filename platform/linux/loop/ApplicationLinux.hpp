// Application object on top of the main loop.
#pragma once

#include <functional>
#include <optional>

#include "platform/LivePlatform.hpp"
#include "platform/linux/loop/EventLoop.hpp"
#include "platform/linux/loop/TerminationSignal.hpp"

namespace quorvane {

// Main thread only. SIGINT requests an orderly end while `run` runs; before and after that it ends
// the process.
class ApplicationLinux {
public:
    explicit ApplicationLinux(EventLoop& loop) : loop_(loop) {}

    // Refers to this object.
    Application table();

private:
    int run(const std::function<void()>& didFinishLaunching,
            const std::function<void()>& willTerminate);

    EventLoop& loop_;
    std::optional<TerminationSignal> termination_;
};

}  // namespace quorvane

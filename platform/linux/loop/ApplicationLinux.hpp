// Application object on top of the main loop.
#pragma once

#include <functional>
#include <optional>
#include <thread>

#include "platform/LivePlatform.hpp"
#include "platform/linux/loop/EventLoop.hpp"
#include "platform/linux/loop/SignalDescriptor.hpp"

namespace quorvane {

// Handler of SIGTERM that runs one last action and ends the process at once, whatever the main
// thread is doing.
//
// Active for the lifetime of the object, on its own thread. On SIGTERM it runs the action, restores
// the signal's default disposition and sends the signal again. If the thread cannot be created, the
// signal keeps its default.
class TerminationSignal {
public:
    explicit TerminationSignal(std::function<void()> action);
    ~TerminationSignal();
    TerminationSignal(const TerminationSignal&) = delete;
    TerminationSignal& operator=(const TerminationSignal&) = delete;

private:
    void watch() const;

    const std::function<void()> action_;
    std::optional<SignalDescriptor> signal_;
    std::thread thread_;
};

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

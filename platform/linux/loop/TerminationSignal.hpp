// Handler of SIGTERM that runs one last action and ends the process at once, whatever the main
// thread is doing.
#pragma once

#include <functional>
#include <optional>
#include <thread>

#include "platform/linux/loop/SignalDescriptor.hpp"

namespace quorvane {

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

}  // namespace quorvane

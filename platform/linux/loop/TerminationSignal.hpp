// SIGTERM ends the process at once, whatever the main thread is doing, after one last action.
#pragma once

#include <functional>
#include <optional>
#include <thread>

#include "platform/linux/loop/SignalDescriptor.hpp"

namespace quorvane {

// From its making to its destruction, on a thread of its own: on SIGTERM it runs the action, gives
// the signal its default meaning back and sends it again. Without a thread the signal keeps its
// default.
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

// The screen-saver services of the desktops: whether any of them says that it is active.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Handle.hpp"
#include "platform/linux/bus/SessionBus.hpp"

namespace quorvane {

// Main thread only. A desktop without such a service, or a session without a bus, is never active;
// a question starts no service. A service that ends, or whose bus goes away, is no longer active.
class ScreenSaverSignals {
public:
    // Calls `changed` when the first of them becomes active and when the last one ceases to be.
    ScreenSaverSignals(SessionBus& bus, std::function<void()> changed);

    bool isActive() const;

private:
    struct Service {
        std::string name;  // of the bus and of the interface
        bool isActive = false;
        std::vector<Handle> observations;
        Handle question;
    };

    void observe(std::size_t index);
    void ask(std::size_t index);
    void askAll();
    void set(std::size_t index, bool isActive);

    SessionBus& bus_;
    std::function<void()> changed_;
    std::vector<Service> services_;
    Handle loss_;
    Handle reconnection_;
};

}  // namespace quorvane

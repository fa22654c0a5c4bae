// The screen-saver services of the desktops, as far as they say that they are active.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Handle.hpp"
#include "platform/linux/SessionBus.hpp"

namespace quorvane {

// Main thread only. A desktop without such a service, or a session without a bus, is never active;
// no service is started by being asked. One that ends while it is active is active no more.
class ScreenSaverSignals {
public:
    // `changed` is called when one of them has become active, or none is any more.
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
    void set(std::size_t index, bool isActive);

    SessionBus& bus_;
    std::function<void()> changed_;
    std::vector<Service> services_;
    Handle reconnections_;
};

}  // namespace quorvane

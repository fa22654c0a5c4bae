// State of the desktops' screen-saver services: whether any reports itself active.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Handle.hpp"
#include "platform/linux/bus/BusConnection.hpp"

namespace quorvane {

// The service of `quorvane-host lock`, for lockers that have none.
inline constexpr char kLockerRunService[] = "example.quillon.Quorvane.Locker";
inline constexpr char kLockerRunPath[] = "/example/quillon/Quorvane/Locker";

// Main thread only. Inactive on a desktop without such a service and in a session without a bus.
// Queries do not auto-start a service. A service becomes inactive when it ends or its bus goes
// away.
class ScreenSaverSignals {
public:
    // Calls `changed` when the first service becomes active and when the last becomes inactive.
    ScreenSaverSignals(SessionBus& bus, std::function<void()> changed);

    bool isActive() const;

private:
    struct Service {
        std::string name;  // both the bus name and the interface
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

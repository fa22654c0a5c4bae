// State of the desktops' screen-saver services: whether any reports itself active.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/Handle.hpp"
#include "platform/linux/bus/BusConnection.hpp"

namespace quorvane {

// The service of `quorvane-host lock`, for lockers that have none.
inline constexpr char kLockerRunService[] = "example.quillon.Quorvane.Locker";
// The add-on's service for processes without a display: active while it detects a lock screen.
inline constexpr char kAddOnDetectorService[] = "example.quillon.Quorvane.LockScreenAddOn.Sight";

inline constexpr const char* kScreenSaverServices[] = {
    "org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver", "org.mate.ScreenSaver",
    "org.cinnamon.ScreenSaver",    "org.xfce.ScreenSaver",  kLockerRunService};
inline constexpr const char* kAddOnServices[] = {kAddOnDetectorService};

// Each service's object path is derived from its name.
std::string screenSaverPath(std::string service);

// Main thread only. Queries do not auto-start a service. A service's state is unknown once it has
// ended or its bus has gone away.
class ScreenSaverSignals {
public:
    // Calls `changed` after each change of `isActive`.
    ScreenSaverSignals(SessionBus& bus, std::span<const char* const> services,
                       std::function<void()> changed);

    // Whether any service reports itself active; nullopt while no state is known.
    std::optional<bool> isActive() const;

private:
    struct Service {
        std::string name;  // both the bus name and the interface
        std::optional<bool> isActive{};
        std::vector<Handle> observations;
        Handle question;
    };

    void observe(Service& service);
    void ask(Service& service);
    void set(Service& service, std::optional<bool> isActive);

    SessionBus& bus_;
    std::function<void()> changed_;
    std::vector<Service> services_;  // complete after the construction
    Handle busObservation_;
};

}  // namespace quorvane

// Session state from the login manager: its locked hint, and wake-ups of the machine.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Handle.hpp"
#include "platform/linux/bus/BusConnection.hpp"

namespace quorvane {

// Main thread only. The session counts as locked while the login manager reports it as locked. That
// ends when the bus or the login manager goes away, and resumes when it is back and still reports a
// lock. Without a login manager, or outside its sessions, no event is reported.
class LogindLinux {
public:
    struct Events {
        std::function<void()> lockedHintChanged;
        std::function<void()> woke;
    };

    LogindLinux(BusConnection& bus, Events events);

    bool isLocked() const { return isLocked_; }

private:
    void observe(const std::string& rule, void (LogindLinux::*handler)(sd_bus_message*));
    void askForHint();
    void onPropertiesChanged(sd_bus_message* message);
    void onPrepareForSleep(sd_bus_message* message);
    void setLocked(bool isLocked);

    BusConnection& bus_;
    const Events events_;
    const std::string sessionPath_;  // "" outside the sessions of the login manager
    bool isLocked_ = false;
    std::vector<Handle> observations_;
    Handle question_;
};

}  // namespace quorvane

// What the login manager knows of this session: whether it calls itself locked, and wakes of the
// machine.
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/Handle.hpp"
#include "platform/Log.hpp"
#include "platform/linux/EventLoop.hpp"

namespace quorvane {

// Main thread only. Without a system bus, without a login manager or outside its sessions nothing
// is ever reported.
class LogindLinux {
public:
    struct Events {
        std::function<void()> lockedHintChanged;
        std::function<void()> woke;
    };

    LogindLinux(EventLoop& loop, Logger log, Events events);
    ~LogindLinux();
    LogindLinux(const LogindLinux&) = delete;
    LogindLinux& operator=(const LogindLinux&) = delete;

    bool isLocked() const { return isLocked_; }

private:
    int connect(EventLoop& loop);
    int observe();
    void askForHint();
    void onPropertiesChanged(sd_bus_message* message);
    void onPrepareForSleep(sd_bus_message* message);
    void setLocked(bool isLocked);

    Events events_;
    sd_bus* bus_ = nullptr;
    std::string sessionPath_;  // "" outside the sessions of the login manager
    bool isLocked_ = false;
    Handle question_;
};

}  // namespace quorvane

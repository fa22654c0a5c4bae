// What stands behind the live tables of this edition. LiveServices::owner points to one of these.
#pragma once

#include <functional>
#include <string>

#include "platform/LivePlatform.hpp"
#include "platform/linux/bus/LocalNotices.hpp"
#include "platform/linux/bus/SessionBus.hpp"
#include "platform/linux/bus/SystemBus.hpp"
#include "platform/linux/loop/EventLoop.hpp"

namespace quorvane {

// The adapters' own lines are logged under this subsystem.
inline constexpr char kPlatformSubsystem[] = "example.quillon.Quorvane.Platform";

struct ServicesLinux {
    explicit ServicesLinux(const LogSink& log);

    EventLoop loop;
    SessionBus sessionBus;
    SystemBus systemBus;
    // The lock watcher delivers the notices of the lock here.
    LocalNotices localNotices;
    // Ends the main loop with this status after the orderly termination: the system went away.
    std::function<void(int status)> fail;

    static ServicesLinux& of(const LiveServices& services) {
        return *static_cast<ServicesLinux*>(services.owner.get());
    }
};

}  // namespace quorvane

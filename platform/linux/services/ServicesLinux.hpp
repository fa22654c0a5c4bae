// State behind the live tables of this edition. LiveServices::owner points to it.
#pragma once

#include <functional>
#include <string>

#include "platform/LivePlatform.hpp"
#include "platform/linux/bus/LocalNotices.hpp"
#include "platform/linux/bus/SessionBus.hpp"
#include "platform/linux/bus/SystemBus.hpp"
#include "platform/linux/loop/EventLoop.hpp"

namespace quorvane {

// The subsystem of the platform's own log lines.
inline constexpr char kPlatformSubsystem[] = "example.quillon.Quorvane.Platform";

struct ServicesLinux {
    explicit ServicesLinux(const LogSink& log);

    EventLoop loop;
    SessionBus sessionBus;
    SystemBus systemBus;
    // The lock watcher delivers the notices of the lock here.
    LocalNotices localNotices;
    // Requests an orderly termination with this exit status, because the system went away.
    std::function<void(int status)> fail;

    static ServicesLinux& of(const LiveServices& services) {
        return *static_cast<ServicesLinux*>(services.owner.get());
    }
};

}  // namespace quorvane

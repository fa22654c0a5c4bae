// What stands behind the live tables of this edition. LiveServices::owner points to one of these.
#pragma once

#include <memory>

#include "platform/LivePlatform.hpp"
#include "platform/linux/EventLoop.hpp"
#include "platform/linux/SessionBus.hpp"

namespace quorvane {

struct ServicesLinux {
    EventLoop loop;
    SessionBus sessionBus;
    // Ends the main loop with this status after the orderly termination: the system went away.
    std::function<void(int status)> fail;

    static ServicesLinux& of(const LiveServices& services) {
        return *static_cast<ServicesLinux*>(services.owner.get());
    }
};

}  // namespace quorvane

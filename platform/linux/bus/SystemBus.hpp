// Connection to the system message bus.
#pragma once

#include <utility>

#include "platform/linux/bus/BusConnection.hpp"

namespace quorvane {

class SystemBus : public BusConnection {
public:
    SystemBus(EventLoop& loop, Logger log)
        : BusConnection(loop, std::move(log), "system", sd_bus_open_system) {}
};

}  // namespace quorvane

// Connection to the session's message bus.
#pragma once

#include "platform/linux/bus/BusConnection.hpp"

namespace quorvane {

// Uses only a bus that runs as the same user.
class SessionBus : public BusConnection {
public:
    SessionBus(EventLoop& loop, Logger log);
};

}  // namespace quorvane

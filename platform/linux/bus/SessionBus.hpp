// The connection to the session's message bus.
#pragma once

#include "platform/linux/bus/BusConnection.hpp"

namespace quorvane {

// Only a bus that runs as the same user is used.
class SessionBus : public BusConnection {
public:
    SessionBus(EventLoop& loop, Logger log);
};

}  // namespace quorvane

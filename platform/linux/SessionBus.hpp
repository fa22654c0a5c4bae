// The connection to the session's message bus.
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/Handle.hpp"
#include "platform/Log.hpp"
#include "platform/linux/EventLoop.hpp"

namespace quorvane {

// Main thread only. Connects on first use, and only to a bus that runs as the same user. Without a
// bus `connection` is null and matches hear nothing. When the bus goes away, that is logged once;
// the next use connects again, and so do a few attempts at growing intervals, after which only uses
// do. Matches are installed anew on each connection.
class SessionBus {
public:
    SessionBus(EventLoop& loop, Logger log);
    ~SessionBus();  // sends what still waits
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    // Attached to the main loop; valid until the next turn of the loop. Ask again instead of
    // keeping it.
    sd_bus* connection();
    // Calls the handler for each message that fits the match rule of the bus. In the order of calls
    // with what is sent afterwards: a signal sent after `match` is heard by it.
    Handle match(const std::string& rule, std::function<void(sd_bus_message*)> handler);
    // Called after each connecting but the first: names and states known from before are stale.
    Handle observeReconnection(std::function<void()> handler);

private:
    struct State;
    std::shared_ptr<State> state_;  // shared only for the handles' weak pointers
};

}  // namespace quorvane

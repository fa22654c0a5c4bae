// A connection to a message bus that comes back after every loss.
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/Handle.hpp"
#include "platform/Log.hpp"
#include "platform/linux/loop/EventLoop.hpp"

namespace quorvane {

// Main thread only. Connects on first use. Without a bus `connection` is null and matches receive
// nothing; that is logged once. The next use tries again, and so does a timer, after a second at
// first and after twice as long each time, up to some minutes. Matches are installed on each new
// connection.
class BusConnection {
public:
    ~BusConnection();  // sends what still waits
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;

    // Attached to the main loop; valid until the next turn of the loop. Ask again instead of
    // keeping it.
    sd_bus* connection();
    // Calls the handler for each message that fits the match rule of the bus. In the order of calls
    // with what is sent afterwards: a signal sent after `match` is heard by it.
    Handle match(const std::string& rule, std::function<void(sd_bus_message*)> handler);
    // Called when an established connection is lost: what services have said may no longer hold.
    Handle observeLoss(std::function<void()> handler);
    // Called after each connecting that follows a failure or a loss: questions sent before it had
    // no answer.
    Handle observeReconnection(std::function<void()> handler);

protected:
    // `name` is for the log and outlives the connection. `open` returns a negative error number
    // where it leaves no bus.
    using Open = int (*)(sd_bus** bus);
    BusConnection(EventLoop& loop, Logger log, const char* name, Open open);

private:
    struct State;
    std::shared_ptr<State> state_;  // shared only for the handles' weak pointers
};

}  // namespace quorvane

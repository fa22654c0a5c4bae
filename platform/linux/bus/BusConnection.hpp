// Connection to a message bus that reconnects after every loss.
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/Handle.hpp"
#include "platform/Log.hpp"
#include "platform/linux/loop/EventLoop.hpp"

namespace quorvane {

// Main thread only. Connects on first use. Without a bus, `connection` is null and matches receive
// nothing; the failure is logged once. The next use retries, and so does a timer: after a second at
// first, then after twice the delay each time, up to some minutes. Each new connection installs the
// matches again.
class BusConnection {
public:
    ~BusConnection();  // sends pending messages
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;

    // Attached to the main loop and valid until the loop's next turn. Call it again instead of
    // keeping the pointer.
    sd_bus* connection();
    // Calls the handler for each message that fits the match rule of the bus. Ordered with later
    // sends: the handler receives a signal that is sent after `match`.
    Handle match(const std::string& rule, std::function<void(sd_bus_message*)> handler);
    // Calls the handler when an established connection is lost: state reported by services may be
    // stale.
    Handle observeLoss(std::function<void()> handler);
    // Calls the handler after each reconnection that follows a failure or a loss: earlier requests
    // received no reply.
    Handle observeReconnection(std::function<void()> handler);

protected:
    // `name` appears in the log and outlives the connection. `open` returns a negative error number
    // on failure.
    using Open = int (*)(sd_bus** bus);
    BusConnection(EventLoop& loop, Logger log, const char* name, Open open);

private:
    struct State;
    std::shared_ptr<State> state_;  // shared only for the handles' weak pointers
};

// The session's bus. Uses only a bus that runs as the same user.
class SessionBus : public BusConnection {
public:
    SessionBus(EventLoop& loop, Logger log);
};

class SystemBus : public BusConnection {
public:
    SystemBus(EventLoop& loop, Logger log);
};

}  // namespace quorvane

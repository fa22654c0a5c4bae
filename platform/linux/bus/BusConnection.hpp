// Connection to a message bus that reconnects after every loss.
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <list>
#include <string>

#include "platform/Handle.hpp"
#include "platform/LifeToken.hpp"
#include "platform/Listeners.hpp"
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
    // Calls the handler when a service with this name appears, ends or is replaced.
    Handle observeOwner(const std::string& service, std::function<void()> handler);
    // Calls the handler with false when an established connection is lost: state reported by
    // services may be stale. Calls it with true after each reconnection that follows a failure or a
    // loss: earlier requests received no reply.
    Handle observeState(std::function<void(bool isConnected)> handler) {
        return states_.add(std::move(handler));
    }

protected:
    // `name` appears in the log and outlives the connection. `opener` returns a negative error
    // number on failure.
    using Open = int (*)(sd_bus** bus);
    BusConnection(EventLoop& loop, Logger log, const char* name, Open opener);

private:
    static constexpr Duration kFirstRetryDelay = std::chrono::seconds{1};
    struct Match {
        BusConnection& owner;
        std::string rule;
        std::function<void(sd_bus_message*)> handler;
        sd_bus_slot* slot = nullptr;
    };

    int open();
    int watchConnection();
    void install(Match& match);
    void established();
    void lost();
    void drop();
    void retryLater();

    EventLoop& loop_;
    const Logger log_;
    const char* const name_;
    const Open openBus_;
    sd_bus* bus_ = nullptr;
    sd_bus_slot* answerSlot_ = nullptr;
    sd_bus_slot* disconnectedSlot_ = nullptr;
    std::list<Match> matches_;
    Listeners<bool> states_;
    bool isEstablished_ = false;  // the bus has answered on this connection
    bool isMissed_ = false;       // no bus, and that was logged; until the bus answers again
    Duration retryDelay_ = kFirstRetryDelay;
    Timer retry_;
    LifeToken life_;  // last, because handles may be dropped while the other members are destroyed
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

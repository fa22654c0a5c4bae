// The MPRIS players of the session bus, with the state they last reported.
#pragma once

#include <systemd/sd-bus.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/LifeToken.hpp"
#include "platform/Listeners.hpp"
#include "platform/MainThread.hpp"
#include "platform/MediaPlayers.hpp"
#include "platform/linux/bus/BusConnection.hpp"
#include "platform/linux/bus/BusRequest.hpp"

namespace quorvane {

// Lives on the thread of the bus's loop, `mainThread`. Implements the operations of the
// MediaPlayers table.
class MprisPlayers {
public:
    MprisPlayers(SessionBus& bus, Clock clock, MainThread mainThread)
        : bus_(bus), clock_(std::move(clock)), mainThread_(std::move(mainThread)) {}

    // Subscribes to signals and looks for players.
    void start();
    const std::vector<MediaPlayer>& list() const { return list_; }
    Handle observe(std::function<void()> handler) { return listeners_.add(std::move(handler)); }
    void refresh(const std::string& name);
    void call(const std::string& name, const std::string& method);
    void set(const std::string& name, const std::string& property, const PropertyValue& value);

private:
    // One name on the bus and its player. The handles are pending requests, which the entry's
    // destruction cancels.
    struct Entry {
        std::string owner;  // the connection's unique name, the sender of its signals
        bool isDescribed = false;
        MediaPlayer player;
        Handle processID;
        Handle identity;
        Handle description;
        Handle position;
        Timer patience;  // while a description is pending
    };

    void findPlayers();
    void findOwner(const std::string& name);
    void add(const std::string& name, const std::string& owner);
    void describe(Entry& entry);
    // Does nothing while the question is pending.
    void ask(Entry& entry, Handle& question, const BusMethod& get,
             void (MprisPlayers::*onReply)(Entry&, sd_bus_message*));
    void onDescription(Entry& entry, sd_bus_message* reply);
    void onPosition(Entry& entry, sd_bus_message* reply);
    void onNameOwner(sd_bus_message* message);
    void onPropertiesChanged(sd_bus_message* message);
    void onSeeked(sd_bus_message* message);
    // Calls the action for each entry whose owner sent the signal.
    template <typename Action>
    void forSender(sd_bus_message* message, Action action);
    void takePosition(Entry& entry, std::int64_t microseconds);
    void askIdentity(Entry& entry);
    void send(const BusRequest& call);
    void changed();
    void publish();

    SessionBus& bus_;
    Clock clock_;
    MainThread mainThread_;
    std::map<std::string, Entry> entries_;
    std::vector<Handle> lookups_;  // requests to the bus
    std::vector<MediaPlayer> list_;
    bool isPublishing_ = false;
    bool isLost_ = false;  // the players went away with the bus
    Listeners<> listeners_;
    std::vector<Handle> observations_;
    LifeToken life_;
};

}  // namespace quorvane

// Distributed notices that this process creates from system state, above all the lock notices. They
// never use the bus, so no bus client can forge one.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "platform/DistributedNotices.hpp"
#include "platform/Handle.hpp"
#include "platform/LifeToken.hpp"
#include "platform/Listeners.hpp"
#include "platform/MainThread.hpp"

namespace quorvane {

// Main thread only. Handles may outlive the object.
class LocalNotices {
public:
    explicit LocalNotices(MainThread mainThread) : mainThread_(std::move(mainThread)) {}

    // Whether the name belongs to the system; only this object delivers such names.
    static bool owns(std::string_view name) { return name.starts_with("com.apple."); }

    // Notifies this process's observers of the name on a later turn of the main loop, in the order
    // of the calls.
    void deliver(const std::string& name) {
        mainThread_.post([this, name, life = life_.watch()] {
            if (!life.isOver()) observers_.call(name);
        });
    }
    Handle observe(const std::string& name, DistributedNotices::Handler handler) {
        return observers_.add([name, handler = std::move(handler)](const std::string& delivered) {
            if (delivered == name) handler({});
        });
    }

private:
    MainThread mainThread_;
    Listeners<const std::string&> observers_;
    LifeToken life_;  // for pending deliveries
};

}  // namespace quorvane

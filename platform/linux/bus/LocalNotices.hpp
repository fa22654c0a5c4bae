// Distributed notices that this process makes itself out of what the system shows it, above all the
// notices of the lock. They never travel over the bus: nobody there can forge a lock.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/DistributedNotices.hpp"
#include "platform/Handle.hpp"
#include "platform/MainThread.hpp"
#include "platform/linux/loop/Listeners.hpp"

namespace quorvane {

// Main thread only. Handles may outlive it.
class LocalNotices {
public:
    explicit LocalNotices(MainThread mainThread);

    // The names that belong to the system, and so are delivered here and nowhere else.
    static bool owns(std::string_view name) { return name.starts_with("com.apple."); }

    // Reaches this process's observers of the name, on a later turn of the main loop and in the
    // order of delivering.
    void deliver(const std::string& name, const PropertyDictionary& userInfo = {});
    Handle observe(const std::string& name, DistributedNotices::Handler handler);

private:
    using Observers = Listeners<const std::string&, const PropertyDictionary&>;

    MainThread mainThread_;
    // Shared only for the weak pointers of what is on its way.
    std::shared_ptr<Observers> observers_ = std::make_shared<Observers>();
};

}  // namespace quorvane

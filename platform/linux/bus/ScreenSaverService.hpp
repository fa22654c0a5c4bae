// A screen-saver service of this process, which announces a lock to other processes.
#pragma once

#include <string>

#include "platform/Handle.hpp"
#include "platform/linux/bus/BusConnection.hpp"

namespace quorvane {

// Main thread only. Inactive at first.
class ScreenSaverService {
public:
    ScreenSaverService(SessionBus& bus, std::string name) : bus_(bus), name_(std::move(name)) {}
    ~ScreenSaverService() { sd_bus_slot_unref(slot_); }
    ScreenSaverService(const ScreenSaverService&) = delete;
    ScreenSaverService& operator=(const ScreenSaverService&) = delete;

    // Waits for the bus. Returns a negative error number on failure: -EEXIST if another process has
    // the name.
    int start();
    // Serves as soon as there is a bus and the name is free, also on later connections.
    void keepServing();
    void set(bool isActive);

private:
    void serve();
    int addObject(sd_bus* bus);

    SessionBus& bus_;
    const std::string name_;
    sd_bus_slot* slot_ = nullptr;
    bool isActive_ = false;
    Handle reconnection_;
};

}  // namespace quorvane

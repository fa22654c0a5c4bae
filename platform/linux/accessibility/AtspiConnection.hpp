// Connection to the accessibility bus, which exposes the cards as objects.
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/accessibility/AtspiObject.hpp"
#include "platform/linux/loop/EventLoop.hpp"

namespace quorvane {

// Main thread only. From the bus's first answer on, assistive technology can find the application;
// destroying the connection removes it.
class AtspiConnection {
public:
    // Returns null when the bus cannot be reached. Calls `lost` when the bus goes away later.
    static std::unique_ptr<AtspiConnection> open(EventLoop& loop, const std::string& address,
                                                 std::function<void()> lost);
    ~AtspiConnection();
    AtspiConnection(const AtspiConnection&) = delete;
    AtspiConnection& operator=(const AtspiConnection&) = delete;

    void add(AccessibleCard& card);
    // Of a card that was added.
    void changed(const AccessibleCard& card);
    void remove(const AccessibleCard& card);

private:
    explicit AtspiConnection(std::function<void()> lost) : lost_(std::move(lost)) {}
    int start(EventLoop& loop, const std::string& address);
    int addObjects();
    int embed();
    void childChanged(const AtspiNode& parent, const char* what, int index,
                      const std::string& child);

    sd_bus* bus_ = nullptr;
    AtspiObjects objects_;
    std::map<const AccessibleCard*, std::vector<SceneControl>> lastSent_;
    std::function<void()> lost_;
};

}  // namespace quorvane

// The connection to the accessibility bus, on which the cards are objects.
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/accessibility/AtspiObject.hpp"
#include "platform/linux/loop/EventLoop.hpp"

namespace quorvane {

// Main thread only. From the bus's first answer on the application is among those that assistive
// technology finds; destroying the connection takes it away.
class AtspiConnection {
public:
    // Null when the bus cannot be reached. `lost` is called when it goes away later.
    static std::unique_ptr<AtspiConnection> open(EventLoop& loop, const std::string& address,
                                                 std::function<void()> lost);
    ~AtspiConnection();
    AtspiConnection(const AtspiConnection&) = delete;
    AtspiConnection& operator=(const AtspiConnection&) = delete;

    void add(AccessibleCard& card);
    void changed(const AccessibleCard& card);
    void remove(const AccessibleCard& card);

private:
    // What was told of a card.
    struct Told {
        const AccessibleCard* card;
        std::vector<SceneControl> controls;
    };

    explicit AtspiConnection(std::function<void()> lost) : lost_(std::move(lost)) {}
    int start(EventLoop& loop, const std::string& address);
    int addObjects();
    int embed();
    void childChanged(const AtspiNode& parent, const char* what, int index,
                      const std::string& child);

    sd_bus* bus_ = nullptr;
    AtspiObjects objects_;
    std::vector<Told> told_;
    std::function<void()> lost_;
};

}  // namespace quorvane

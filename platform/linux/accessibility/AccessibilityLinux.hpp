// Publisher of cards to assistive technology over the accessibility bus.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Log.hpp"
#include "platform/linux/accessibility/AccessibleCard.hpp"
#include "platform/linux/accessibility/AtspiConnection.hpp"
#include "platform/linux/bus/BusConnection.hpp"

namespace quorvane {

// Main thread only. Idle while no card is visible. While one is, it queries and observes whether
// the session uses assistive technology, and connects to the accessibility bus only then.
class AccessibilityLinux final : public AccessibleCards {
public:
    AccessibilityLinux(EventLoop& loop, SessionBus& sessionBus, Logger log);

    void appeared(AccessibleCard& card) override;
    void changed(AccessibleCard& card) override;
    void disappeared(AccessibleCard& card) override;

private:
    void watch();
    void askWhetherInUse();
    void askForBus();
    void connect(const std::string& address);
    void disconnect();

    EventLoop& loop_;
    SessionBus& sessionBus_;
    Logger log_;
    std::vector<AccessibleCard*> cards_;
    std::vector<Handle> matches_;
    Handle question_;
    std::unique_ptr<AtspiConnection> connection_;
    Timer disconnection_;
};

}  // namespace quorvane

// Decides when a fresh player state is asked for: steadily while a card could be shown, and once
// more soon after each command.
#pragma once

#include <functional>

#include "AddOnKit/LifeToken.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

// Main thread only. Owned by the coordinator. `refresh` may take its time, call back in or destroy
// the refresher.
class StateRefresher {
public:
    StateRefresher(Clock clock, std::function<void()> refresh);

    // Becoming active refreshes at once, then every two seconds, or up to one later where that saves
    // a wake-up.
    void setActive(bool active);
    // A command was sent: one refresh, a moment after the last of a burst.
    void nudge();
    // For good.
    void stop();

private:
    void refreshAndPollOn();
    void refresh();

    Clock clock_;
    std::function<void()> refresh_;
    bool isPolling_ = false;
    Timer poll_;  // while polling, except during a refresh of the poll
    Timer followUp_;
    bool isStopped_ = false;
    LifeToken life_;
};

}  // namespace quorvane

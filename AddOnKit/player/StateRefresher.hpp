// Schedule of player-state requests to the main application: at a steady interval while a card
// could be shown, and once more soon after each command.
#pragma once

#include <functional>

#include "platform/Clock.hpp"

namespace quorvane {

// Main thread only. Owned by the coordinator. `refresh` may block or re-enter the refresher.
class StateRefresher {
public:
    StateRefresher(Clock clock, std::function<void()> refresh);

    // Becoming active refreshes at once, then every two seconds on average.
    void setActive(bool active);
    // A command was sent: one refresh, 0.8 seconds after the last of a burst.
    void nudge();
    // Permanent: no refresh follows.
    void stop();

private:
    void refreshWhatIsDue();

    Clock clock_;
    std::function<void()> refresh_;
    bool isPolling_ = false;
    Timer poll_;         // set while polling, except while its refresh runs
    Instant pollDue_{};  // the earliest time of the next poll
    Timer followUp_;
    Instant followUpDue_{};
    bool isStopped_ = false;
};

}  // namespace quorvane

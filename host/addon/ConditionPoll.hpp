// Repeated check until a condition holds or a time limit passes.
#pragma once

#include <functional>

#include "platform/Clock.hpp"

namespace quorvane {

// Main thread only. Destroying it cancels the poll without calling `done`.
class ConditionPoll {
public:
    explicit ConditionPoll(Clock clock) : clock_(std::move(clock)) {}

    // Calls `done` once, later, with true if the condition held in time. `done` may restart the
    // poll.
    void start(Duration patience, std::function<bool()> condition, std::function<void(bool)> done);

private:
    void look();
    void lookLater(Duration delay);

    static constexpr Duration kInterval = std::chrono::milliseconds{50};

    Clock clock_;
    Instant deadline_;
    std::function<bool()> condition_;
    std::function<void(bool)> done_;
    Timer timer_;
};

}  // namespace quorvane

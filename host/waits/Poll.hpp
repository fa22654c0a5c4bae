// Looks again and again until something holds.
#pragma once

#include <functional>

#include "platform/Clock.hpp"

namespace quorvane {

// Main thread only. Destroying it ends the looking; nothing is called then.
class Poll {
public:
    explicit Poll(Clock clock) : clock_(std::move(clock)) {}

    // `done` is told whether the condition has come to hold in time, later, once. It may start the
    // poll anew.
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

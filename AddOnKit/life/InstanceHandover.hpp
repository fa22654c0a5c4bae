// Handover between copies of the add-on, so that only one draws cards. A starting copy waits for
// older ones to quit, asks them to, and quits itself if they won't.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "platform/Clock.hpp"
#include "platform/RunningApplications.hpp"

namespace quorvane {

// Main thread only. Destroying it cancels the handover without an outcome.
class InstanceHandover {
public:
    using RunningCopy = quorvane::RunningCopy;
    using PIDs = std::vector<std::int32_t>;
    struct Outcome {
        enum class Kind {
            oldestCopy,    // the copies are newer
            othersExited,  // the older ones quit by themselves
            timedOut,      // the copies still ran when the wait ended; they were not asked
            terminated,    // the copies quit when asked
            stillRunningAfterTermination,
            alone,
        };
        Kind kind;
        PIDs copies{};
        Duration waited{};  // until the others exited
        bool operator==(const Outcome&) const = default;
    };

    static constexpr Duration kWait = std::chrono::seconds{10};
    static constexpr Duration kPoll = std::chrono::milliseconds{250};
    static constexpr Duration kGrace = std::chrono::seconds{2};

    struct Operations {
        std::function<std::vector<RunningCopy>()> running;
        std::function<void(const PIDs&)> terminate;  // asks each to quit
        Clock clock;
    };
    struct Timing {
        Duration wait = kWait;
        Duration poll = kPoll;
        Duration grace = kGrace;
    };

    InstanceHandover(RunningCopy me, Operations operations, Timing timing);

    // Calls `completion` exactly once, inside the call or later.
    void resolve(std::function<void(Outcome)> completion);
    // Like resolve, but asks no copy to quit: copies that remain give `timedOut`.
    void waitOnly(std::function<void(Outcome)> completion);

private:
    using Kind = Outcome::Kind;

    bool isOlder(const RunningCopy& copy) const;
    PIDs olderCopies() const;
    void begin();
    void poll(Duration limit);
    void ask(const PIDs& older);
    void finish(Outcome outcome);

    RunningCopy me_;
    Operations operations_;
    Timing timing_;
    bool asks_ = true;
    Duration elapsed_{};
    PIDs asked_;  // empty before they are asked
    std::function<void(Outcome)> completion_;
    Timer timer_;
};

}  // namespace quorvane

// The installer's view of a running add-on: finds it, quits it, and waits for it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Clock.hpp"
#include "platform/DistributedNotices.hpp"
#include "platform/RunningApplications.hpp"
#include "shared/AddOnSignals.hpp"

namespace quorvane {

// Main thread only. One operation at a time; each calls back once, later.
class AddOnControl {
public:
    struct Services {
        RunningApplications applications;
        DistributedNotices notices;
        Clock clock;
        bool receivesNotices = true;  // false without a bus: no add-on answers, so waits are short
    };
    enum class Answer { runs, ended, isSilent };

    explicit AddOnControl(Services services) : services_(std::move(services)) {}

    bool isRunning() const;
    // Asks every copy to quit, by notice and, if that fails, through the system. `done` receives
    // true when no copy is left.
    void quit(std::function<void(bool)> done);
    // Waits until an add-on of this version answers. A newly launched copy may first have to wait
    // for another one to quit.
    void awaitVersion(const std::string& version, std::function<void(Answer)> done);
    // Waits until the condition holds, for as long as a copy takes to remove itself.
    void awaitRemoval(std::function<bool()> isRemoved, std::function<void(bool)> done);

private:
    // Checks repeatedly. Calls `done` once, later, with true if the condition held in time.
    void poll(Duration patience, std::function<bool()> condition, std::function<void(bool)> done);
    void check();
    void requestQuitBySignal();
    void requestStatus();

    Services services_;
    Instant deadline_{};
    std::function<bool()> condition_;
    std::function<void(bool)> done_;
    Timer nextCheck_;
    Handle observation_;
    bool hasAnswered_ = false;
    int checks_ = 0;
};

}  // namespace quorvane

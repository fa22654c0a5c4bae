// A running add-on as the installer deals with it: is it there, and will it go?
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/waits/Poll.hpp"
#include "platform/DistributedNotices.hpp"
#include "platform/RunningApplications.hpp"
#include "shared/AddOnSignals.hpp"

namespace quorvane {

// Main thread only. One question at a time; the answer comes later, once.
class AddOnControl {
public:
    struct Services {
        RunningApplications applications;
        DistributedNotices notices;
        Clock clock;
        bool canHearNotices = true;  // false without a bus: nothing answers, so waiting is short
    };
    enum class Answer { runs, ended, isSilent };

    explicit AddOnControl(Services services);

    bool isRunning() const;
    // Asks every copy to quit, by notice and, where that fails, as the system asks. `done` gets
    // whether none is left.
    void quit(std::function<void(bool)> done);
    // Waits until an add-on of this version says that it is there. A copy that has just been
    // launched may first have to wait for another one to go.
    void awaitVersion(const std::string& version, std::function<void(Answer)> done);
    // Waits until the condition holds, for as long as a copy takes to remove itself.
    void awaitRemoval(std::function<bool()> isRemoved, std::function<void(bool)> done);

private:
    void askAsTheSystemAsks();
    void requestStatus();

    Services services_;
    Poll poll_;
    Handle observation_;
    bool hasAnswered_ = false;
    int looks_ = 0;
};

}  // namespace quorvane

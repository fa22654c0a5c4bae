// The application's delegate: what happens when launching has finished and before the process ends.
#pragma once

#include "Quorvane_Lock_Screen/AddOnCoordinator.hpp"

namespace quorvane {

// Main thread only. Lives in the entry, as long as the main loop runs.
class AddOnApp {
public:
    explicit AddOnApp(const LivePlatform& platform);

    void applicationDidFinishLaunching();
    void applicationWillTerminate();

private:
    std::shared_ptr<AddOnCoordinator> coordinator_;
};

}  // namespace quorvane

// The application's delegate: what a launch is for, which copy of the add-on goes on, and what
// happens before the process ends.
#pragma once

#include <memory>
#include <optional>

#include "AddOnKit/life/InstanceHandover.hpp"
#include "Quorvane_Lock_Screen/AddOnCoordinator.hpp"
#include "platform/Log.hpp"

namespace quorvane {

// Main thread only. Lives in the entry, as long as the main loop runs; `platform` outlives it.
class AddOnApp {
public:
    explicit AddOnApp(const LivePlatform& platform);

    void applicationDidFinishLaunching();
    // At any time, also before the coordinator has been started.
    void applicationWillTerminate();

private:
    struct AfterHandover;

    void run();
    void handOver();
    void askToQuit(const InstanceHandover::PIDs& pids) const;

    const LivePlatform& platform_;
    Logger log_;
    std::shared_ptr<AddOnCoordinator> coordinator_;
    // Each ends when the process is about to: a coordinator that began after that would show
    // windows that nobody closes.
    Timer handoverTask_;
    std::optional<InstanceHandover> handover_;
};

}  // namespace quorvane

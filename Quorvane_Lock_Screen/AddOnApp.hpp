// The application's delegate: performs the launch decision, the handover between copies of the
// add-on, and the cleanup before the process ends.
#pragma once

#include <memory>
#include <optional>

#include "AddOnKit/life/InstanceHandover.hpp"
#include "Quorvane_Lock_Screen/AddOnCoordinator.hpp"
#include "platform/Log.hpp"

namespace quorvane {

// Main thread only. Lives in the entry as long as the main loop runs; `platform` outlives it.
class AddOnApp {
public:
    explicit AddOnApp(const LivePlatform& platform);

    void applicationDidFinishLaunching();
    // May be called at any time, also before the coordinator has started.
    void applicationWillTerminate();

private:
    void run();
    void handOver();
    void handedOver(const InstanceHandover::Outcome& outcome);
    void askToQuit(const InstanceHandover::PIDs& pids) const;

    const LivePlatform& platform_;
    Logger log_;
    std::shared_ptr<AddOnCoordinator> coordinator_;
    // Both end before the process does, because a coordinator started after that would show windows
    // that are never closed.
    Timer handoverTask_;
    std::optional<InstanceHandover> handover_;
};

}  // namespace quorvane

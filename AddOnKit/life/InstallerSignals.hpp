// Answers to the installer, which asks a running add-on for its status or to quit. Uses distributed
// notices because they work even when the link is down.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/DistributedNotices.hpp"
#include "platform/Log.hpp"

namespace quorvane {

// Main thread only. Owned by the coordinator.
class InstallerSignals {
public:
    InstallerSignals(std::string version, DistributedNotices center, std::function<void()> quit,
                     const LogSink& log);

    // Repeated calls of either have no effect.
    void start();
    void stop();

    // Whether the link to the main application is up. After start, each change is posted.
    void setConnected(bool isConnected);

private:
    void statusRequested();
    void quitRequested();
    void postStatus() const;

    bool isConnected_ = false;
    std::string version_;
    DistributedNotices center_;
    std::function<void()> quit_;
    std::vector<Handle> tokens_;
    Logger log_;
};

}  // namespace quorvane

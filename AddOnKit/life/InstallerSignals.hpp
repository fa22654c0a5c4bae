// Answers the installer, which may ask a running add-on for its status and ask it to quit, over
// distributed notices: they work even when the link is down.
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

    // Either may be called again without effect.
    void start();
    void stop();

    // Whether the link to the main application stands. After start, a change is posted.
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

// Translator of the system's lock-screen and wake notices into presentation events. It makes no
// decisions: each notice is passed on as it arrives.
#pragma once

#include <functional>
#include <vector>

#include "AddOnKit/presentation/PresentationEvent.hpp"
#include "platform/DistributedNotices.hpp"
#include "platform/LockSources.hpp"
#include "platform/Log.hpp"
#include "platform/ThreadCheck.hpp"

namespace quorvane {

// Main thread only. Owned by the coordinator. The listener may stop the monitor.
class LockMonitor {
public:
    LockMonitor(DistributedNotices notices, LockSources sources, LogSink log);

    // Repeated calls of either have no effect. The monitor may be restarted.
    void start();
    void stop();

    bool isScreenLockedNow() const { return isScreenLocked(sources_); }

    // While it is null, notices are only logged.
    std::function<void(const PresentationEvent&)> onEvent;

private:
    void observe(const char* notice, std::function<void()> handler);
    void woke();
    void logSharedLockUIState() const;
    void emit(const PresentationEvent& event) const;

    DistributedNotices notices_;
    LockSources sources_;
    Logger log_;
    std::vector<Handle> noticeObservers_;
    Handle wakeObserver_;
    ThreadCheck mainThread_;
};

}  // namespace quorvane

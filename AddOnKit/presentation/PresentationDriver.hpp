// Owner of the presentation state: applies events to it, runs the reveal delay, logs every change
// and notifies its two listeners.
#pragma once

#include <deque>
#include <functional>
#include <string>

#include "AddOnKit/presentation/PresentationState.hpp"
#include "platform/Clock.hpp"
#include "platform/Log.hpp"

namespace quorvane {

// The five fields, for a log.
std::string describe(const PresentationState& state);

// Main thread only. Owned by the coordinator, which sets the listeners before it sends events. A
// listener may send further events. Events sent by onLocked are handled after the current one.
// Events sent by onChange are handled at once. So after a call that may have sent events, onChange
// must read `state`, not the state it was passed.
class PresentationDriver {
public:
    PresentationDriver(Clock clock, LogSink log);

    void handle(const PresentationEvent& event);

    const PresentationState& state() const { return state_; }

    // After every change, with the new state.
    std::function<void(const PresentationState&)> onChange;
    // The screen was found locked: at every lock notice, and at a wake that reveals a missed one.
    std::function<void()> onLocked;

private:
    void handleOne(const PresentationEvent& event);
    bool hasFoundLock(const PresentationEvent& event, const PresentationState& old) const;
    void updateDelay();
    void logState() const;

    PresentationState state_;
    Clock clock_;
    Timer delay_;  // held exactly while the state awaits the delay
    Logger log_;
    std::deque<PresentationEvent> waiting_;
    bool isHandling_ = false;
};

}  // namespace quorvane

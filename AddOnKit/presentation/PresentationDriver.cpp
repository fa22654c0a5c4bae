#include "AddOnKit/presentation/PresentationDriver.hpp"

#include <chrono>

#include "QuorvaneKit/link/Identifiers.hpp"

namespace quorvane {
namespace {

// From the lock screen's appearance to the card's, so that the lock screen settles first.
constexpr Duration kRevealDelay = std::chrono::milliseconds{800};

}  // namespace

std::string describe(const PresentationState& state) {
    const auto field = [](const char* name, bool value) {
        return std::string{name} + (value ? " true" : " false");
    };
    return field("locked", state.isLocked) + field(", lockui", state.isLockUIShown) +
           field(", delay", state.delayElapsed) + field(", allowed", state.allowsPlayer) +
           field(", music", state.hasMusic);
}

PresentationDriver::PresentationDriver(Clock clock, LogSink log)
    : clock_(std::move(clock)), log_(std::move(log), kAddOnBundleIdentifier, "presenter") {}

void PresentationDriver::handle(const PresentationEvent& event) {
    // One event at a time. Otherwise an event sent by a listener would overtake the notification of
    // the change being handled, and the older state would be reported last.
    waiting_.push_back(event);
    if (isHandling_) return;
    while (!waiting_.empty()) {
        isHandling_ = true;
        const PresentationEvent next = waiting_.front();
        waiting_.pop_front();
        handleOne(next);
    }
    isHandling_ = false;
}

void PresentationDriver::handleOne(const PresentationEvent& event) {
    const PresentationState old = state_;
    state_ = old.applying(event);
    if (hasFoundLock(event, old) && onLocked) onLocked();
    updateDelay();
    if (state_ == old) return;
    logState();
    // Clear isHandling_ before notifying: the listener may block, and an unlock that arrives during
    // that time must close the windows at once.
    isHandling_ = false;
    const PresentationState changed = state_;  // a copy, because the listener may send events
    if (onChange) onChange(changed);
}

// A lock notice always counts; a wake counts only when it reveals a missed notice.
bool PresentationDriver::hasFoundLock(const PresentationEvent& event,
                                      const PresentationState& old) const {
    if (std::holds_alternative<event::Locked>(event)) return true;
    if (!std::holds_alternative<event::Woke>(event) || old.isLocked == state_.isLocked)
        return false;
    if (state_.isLocked)
        log_.info("wake: the screen is locked but no lock notice arrived");
    else
        log_.info("wake: the screen is unlocked but no unlock notice arrived");
    return state_.isLocked;
}

void PresentationDriver::updateDelay() {
    if (!state_.awaitingDelay()) {
        delay_.reset();
    } else if (!delay_) {
        delay_ = clock_.after(kRevealDelay, [this] {
            delay_.reset();
            handle(event::DelayElapsed{});
        });
    }
}

void PresentationDriver::logState() const {
    log_.info(
        "state: locked %{bool}d, lockui %{bool}d, delay %{bool}d, allowed %{bool}d, music "
        "%{bool}d → windows %{bool}d, card %{bool}d",
        state_.isLocked, state_.isLockUIShown, state_.delayElapsed, state_.allowsPlayer,
        state_.hasMusic, state_.windowsWanted(), state_.cardShown());
}

}  // namespace quorvane

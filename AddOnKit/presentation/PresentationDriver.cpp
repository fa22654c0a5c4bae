#include "AddOnKit/presentation/PresentationDriver.hpp"

#include "AddOnKit/presentation/PresentationTiming.hpp"
#include "QuorvaneKit/link/Identifiers.hpp"

namespace quorvane {

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
    // One at a time: an event sent by a listener would otherwise overtake the news of the change
    // that is being handled, and that older news would then have the last word.
    waiting_.push_back(event);
    if (isHandling_) return;
    const auto life = life_.watch();
    while (!waiting_.empty()) {
        isHandling_ = true;
        const PresentationEvent next = waiting_.front();
        waiting_.pop_front();
        handleOne(next);
        if (life.isOver()) return;
    }
    isHandling_ = false;
}

void PresentationDriver::handleOne(const PresentationEvent& event) {
    const PresentationState old = state_;
    state_ = old.applying(event);
    if (hasFoundLock(event, old)) {
        const auto life = life_.watch();
        if (const auto listener = onLocked) listener();
        if (life.isOver()) return;
    }
    updateDelay();
    if (state_ == old) return;
    logState();
    // Both the listener and what it is told are copies: it may replace itself or destroy the
    // driver.
    const PresentationState news = state_;
    // The news are told, the event is handled: an unlock that comes inside a wait of the listener
    // must not find the windows standing until that wait is over.
    isHandling_ = false;
    if (const auto listener = onChange) listener(news);
}

// A lock notice counts every time; a wake only when it reveals what no notice told.
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
        delay_ = clock_.after(PresentationTiming::kRevealDelay, [this] {
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

// State that decides when card windows are up on the lock screen and when their card is visible.
// Pure values: no clock, no log, no callbacks.
#pragma once

#include "AddOnKit/presentation/PresentationEvent.hpp"

namespace quorvane {

struct PresentationState {
    bool isLocked = false;
    bool isLockUIShown = false;  // may come before isLocked: the notices have no fixed order
    bool delayElapsed = false;   // in every reachable state: only while locked with the UI shown
    bool allowsPlayer = false;
    bool hasMusic = false;

    constexpr bool windowsWanted() const {
        return isLocked && isLockUIShown && delayElapsed && allowsPlayer;
    }
    constexpr bool cardShown() const { return windowsWanted() && hasMusic; }
    // The reveal delay runs exactly while this holds.
    constexpr bool awaitingDelay() const { return isLocked && isLockUIShown && !delayElapsed; }
    // Only the delay still keeps the card from showing.
    constexpr bool cardExpected() const { return awaitingDelay() && allowsPlayer && hasMusic; }

    [[nodiscard]] constexpr PresentationState applying(const PresentationEvent& event) const;
    bool operator==(const PresentationState&) const = default;
};

// One row per event. A field that a row does not name keeps its value.
struct PresentationRules {
    PresentationState next;

    constexpr void operator()(event::Link e) { next.allowsPlayer = e.allowsPlayer; }
    constexpr void operator()(event::Music e) { next.hasMusic = e.isPlaying; }
    // A wake makes up for missed notices: it acts as a lock or an unlock.
    constexpr void operator()(event::Woke e) {
        if (e.isLockedNow)
            (*this)(event::Locked{});
        else
            (*this)(event::Unlocked{});
    }
    // A repeated lock keeps an elapsed delay; a new one starts without it.
    constexpr void operator()(event::Locked) {
        next.delayElapsed = next.isLocked && next.delayElapsed;
        next.isLocked = true;
    }
    constexpr void operator()(event::Unlocked) {
        next.isLocked = next.isLockUIShown = next.delayElapsed = false;
    }
    // A late timer may fire after the unlock; it then has no effect.
    constexpr void operator()(event::DelayElapsed) {
        next.delayElapsed = next.delayElapsed || (next.isLocked && next.isLockUIShown);
    }
    // Applies while unlocked too: this notice may overtake the lock notice.
    constexpr void operator()(event::LockUIShown) { next.isLockUIShown = true; }
    constexpr void operator()(event::LockUIHidden) {
        next.isLockUIShown = next.delayElapsed = false;
    }
};

constexpr PresentationState PresentationState::applying(const PresentationEvent& event) const {
    PresentationRules rules{*this};
    std::visit(rules, event);
    return rules.next;
}

}  // namespace quorvane

// Events of the card's presentation. Pure values.
#pragma once

#include <variant>

namespace quorvane {

namespace event {

// The main application now allows or forbids the card.
struct Link {
    bool allowsPlayer;
    bool operator==(const Link&) const = default;
};
// There is now music to show, or none.
struct Music {
    bool isPlaying;
    bool operator==(const Music&) const = default;
};
// The machine has woken; notices may have been missed while it slept.
struct Woke {
    bool isLockedNow;
    bool operator==(const Woke&) const = default;
};
struct Locked {
    bool operator==(const Locked&) const = default;
};
struct Unlocked {
    bool operator==(const Unlocked&) const = default;
};
// The reveal delay has run out.
struct DelayElapsed {
    bool operator==(const DelayElapsed&) const = default;
};
struct LockUIShown {
    bool operator==(const LockUIShown&) const = default;
};
struct LockUIHidden {
    bool operator==(const LockUIHidden&) const = default;
};

}  // namespace event

using PresentationEvent =
    std::variant<event::Link, event::Music, event::Woke, event::Locked, event::Unlocked,
                 event::DelayElapsed, event::LockUIShown, event::LockUIHidden>;

}  // namespace quorvane

// Player that plays a script: its tracks advance with the clock, and every command works. For
// demonstrations and tests.
#pragma once

#include <random>

#include "host/players/PlayerSource.hpp"
#include "host/players/Script.hpp"

namespace quorvane {

// Main thread only. Wakes the process only when a track ends.
class ScriptedPlayer : public PlayerSource {
public:
    ScriptedPlayer(Script script, Clock clock);

    PlayerSnapshot snapshot() const override;
    bool perform(QuorvaneAction action) override;
    bool setVolume(std::int64_t percent) override;
    bool setRating(std::int64_t percent) override;

private:
    ScriptedTrack& current() { return script_.tracks[order_[place_]]; }
    const ScriptedTrack& current() const { return script_.tracks[order_[place_]]; }
    std::optional<double> duration() const;

    void playPause();
    // Goes to the next track of the order, or to the first when the script repeats; stops at the
    // end. `byItself` is true when the previous track has ended.
    void advance(bool byItself);
    void goBack();
    void begin(std::size_t place, double seconds, XPCPlayerState state);
    void setState(XPCPlayerState state);
    void toggleMute();
    // Sets or clears one of the two marks of a track, love and dislike, which exclude each other.
    bool toggle(std::optional<bool>& mark, std::optional<bool>& opposite);
    void toggleShuffle();
    void toggleRepeat();
    void changed();
    void armEndOfTrack();

    Script script_;
    Clock clock_;
    // The order in which the tracks are played, as indices, and the current place in it.
    std::vector<std::size_t> order_;
    std::size_t place_ = 0;
    XPCPlayerState state_ = XPCPlayerState::paused;
    PlaybackAnchor anchor_;
    bool isMuted_ = false;
    std::minstd_rand random_;  // always the same seed, so that a demonstration is repeatable
    Timer endOfTrack_;
};

}  // namespace quorvane

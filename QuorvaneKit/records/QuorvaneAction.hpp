// Commands that the add-on sends to the main application.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace quorvane {

// Raw values travel on the wire; they are grouped by tens.
enum class QuorvaneAction : std::int64_t {
    playPause = 0,
    nextTrack = 1,
    previousTrack = 2,
    increaseVolume = 10,
    decreaseVolume = 11,
    toggleMute = 12,
    toggleLove = 20,
    toggleDislike = 21,
    increaseRating = 22,
    decreaseRating = 23,
    removeRating = 24,
    toggleShuffle = 30,
    toggleRepeat = 31,
    activatePlayer = 40,
    switchPlayer = 41,
};

// Returns nullopt for a number that is not an action.
std::optional<QuorvaneAction> quorvaneAction(std::int64_t rawValue);
// The action's name as spelled above.
std::string_view actionName(QuorvaneAction action);

}  // namespace quorvane

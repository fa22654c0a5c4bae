// What a player is told over MPRIS for a command of the card. Pure values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "QuorvaneKit/QuorvaneAction.hpp"
#include "platform/MediaPlayers.hpp"

namespace quorvane {

struct MprisCall {
    std::string method;
    bool operator==(const MprisCall&) const = default;
};
struct MprisSet {
    std::string property;
    PropertyValue value;
    bool operator==(const MprisSet&) const = default;
};
struct MprisRaise {
    bool operator==(const MprisRaise&) const = default;
};
using MprisCommand = std::variant<MprisCall, MprisSet, MprisRaise>;

// What to tell the player for an action; nothing when the player does not take it.
// `volumeBeforeMute` is what unmuting goes back to.
std::optional<MprisCommand> commandFor(QuorvaneAction action, const MediaPlayer& player,
                                       double volumeBeforeMute);
std::optional<MprisCommand> volumeCommand(std::int64_t percent, const MediaPlayer& player);

}  // namespace quorvane

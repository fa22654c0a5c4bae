// The action of a card's command: a message to the player over MPRIS, or a new volume at the sound
// server. Pure values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "QuorvaneKit/records/QuorvaneAction.hpp"
#include "host/players/PlayerVolume.hpp"

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
struct SetSoundVolume {
    std::optional<std::uint32_t> stream;  // nullopt: the system's volume
    double volume;
    bool operator==(const SetSoundVolume&) const = default;
};
using MprisCommand = std::variant<MprisCall, MprisSet, SetSoundVolume>;

// Both return nullopt when the command cannot be carried out. Unmuting restores `volumeBeforeMute`.
std::optional<MprisCommand> commandFor(QuorvaneAction action, const MediaPlayer& player,
                                       const PlayerVolume& volume, double volumeBeforeMute);
std::optional<MprisCommand> volumeCommand(std::int64_t percent, const PlayerVolume& volume);

}  // namespace quorvane

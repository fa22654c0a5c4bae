// The volume that the card shows for a player, and its owner. Pure values.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/MediaPlayers.hpp"
#include "platform/SoundServer.hpp"

namespace quorvane {

struct PlayerVolume {
    enum class Owner {
        player,
        stream,  // the player's stream at the sound server
        system,
        none,  // no volume that a command could change
    };

    Owner owner = Owner::none;
    double level = 1;  // 0...1
    std::optional<std::uint32_t> stream{};
    bool operator==(const PlayerVolume&) const = default;

    // The player's own volume, else its stream's, else the system's.
    static PlayerVolume of(const MediaPlayer& player, const SoundLevels& sound);
};

// Whether the player's volume must be read from the sound server.
bool needsSoundServer(const MediaPlayer& player);

}  // namespace quorvane

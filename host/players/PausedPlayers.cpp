#include "host/players/PausedPlayers.hpp"

#include <algorithm>

#include "host/players/MprisTranslation.hpp"

namespace quorvane {

bool PausedPlayers::canPause(const MediaPlayer& player) {
    return playerStateOf(player).playerState == XPCPlayerState::playing &&
           allows(player, "CanControl") && allows(player, "CanPause");
}

void PausedPlayers::add(const MediaPlayer& player) {
    players_[player.busName] = {.track = trackKeyOf(player)};
}

void PausedPlayers::update(std::span<const MediaPlayer> players) {
    const auto isTouched = [&](const std::string& name, Paused& paused) {
        const auto player = std::ranges::find(players, name, &MediaPlayer::busName);
        if (player == players.end() || trackKeyOf(*player) != paused.track) return true;
        const XPCPlayerState state = playerStateOf(*player).playerState;
        if (state == XPCPlayerState::playing) return paused.hasObeyed;
        paused.hasObeyed = true;
        return state != XPCPlayerState::paused;
    };
    for (auto entry = players_.begin(); entry != players_.end();)
        entry = isTouched(entry->first, entry->second) ? players_.erase(entry) : std::next(entry);
}

std::vector<std::string> PausedPlayers::take() {
    std::vector<std::string> names;
    for (const auto& [name, paused] : players_) names.push_back(name);
    players_.clear();
    return names;
}

}  // namespace quorvane

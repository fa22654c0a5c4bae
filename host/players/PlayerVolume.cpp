#include "host/players/PlayerVolume.hpp"

#include <tuple>

#include "host/players/MprisTranslation.hpp"
#include "platform/LowerCase.hpp"

namespace quorvane {

namespace {

// A browser plays from a helper process, and a sandboxed player hides its process ID. Such players
// are matched by the name that they give to both services.
bool plays(const SoundStream& stream, const MediaPlayer& player) {
    if (player.processID != 0 && stream.processID == player.processID) return true;
    return !stream.application.empty() &&
           lowerCase(stream.application) == lowerCase(player.identity);
}

}  // namespace

PlayerVolume PlayerVolume::of(const MediaPlayer& player, const SoundLevels& sound) {
    const double own = ownVolumeOf(player).value_or(1);
    if (!needsSoundServer(player)) return {Owner::player, own};
    // Of several streams, prefers one that plays; among those the latest.
    const SoundStream* best = nullptr;
    const auto order = [](const SoundStream& stream) {
        return std::tuple{stream.isPlaying, stream.number};
    };
    for (const SoundStream& stream : sound.streams)
        if (plays(stream, player) && (!best || order(stream) > order(*best))) best = &stream;
    if (best) return {Owner::stream, best->volume, best->number};
    if (sound.system) return {Owner::system, *sound.system};
    return {Owner::none, own};
}

bool needsSoundServer(const MediaPlayer& player) {
    return !ownVolumeOf(player) || !allows(player, "CanControl");
}

}  // namespace quorvane

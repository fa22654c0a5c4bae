#include "host/players/MprisCommand.hpp"

#include <algorithm>

#include "host/players/MprisTranslation.hpp"

namespace quorvane {

namespace {

constexpr double kVolumeStep = 0.05;

std::optional<MprisCommand> setVolume(const PlayerVolume& volume, double level) {
    level = std::clamp(level, 0.0, 1.0);
    switch (volume.owner) {
        case PlayerVolume::Owner::player: return MprisSet{"Volume", {level}};
        case PlayerVolume::Owner::stream:
        case PlayerVolume::Owner::system: return SetSoundVolume{volume.stream, level};
        case PlayerVolume::Owner::none: break;
    }
    return std::nullopt;
}

std::optional<MprisCommand> toggleShuffle(const MediaPlayer& player) {
    const auto* shuffle = find<bool>(player.properties, "Shuffle");
    return shuffle ? std::optional{MprisSet{"Shuffle", {!*shuffle}}} : std::nullopt;
}

std::optional<MprisCommand> toggleRepeat(const MediaPlayer& player) {
    const auto mode = playerStateOf(player).repeatMode;
    if (!mode) return std::nullopt;
    const char* const next = *mode == XPCRepeatMode::off   ? "Playlist"
                             : *mode == XPCRepeatMode::all ? "Track"
                                                           : "None";
    return MprisSet{"LoopStatus", {std::string{next}}};
}

}  // namespace

std::optional<MprisCommand> commandFor(QuorvaneAction action, const MediaPlayer& player,
                                       const PlayerVolume& volume, double volumeBeforeMute) {
    const bool canControl = allows(player, "CanControl");
    const auto callIf = [&](const char* property, const char* method) {
        const bool isAllowed = canControl && allows(player, property);
        return isAllowed ? std::optional<MprisCommand>{MprisCall{method}} : std::nullopt;
    };
    switch (action) {
        case QuorvaneAction::activatePlayer: return MprisCall{"Raise"};
        case QuorvaneAction::playPause: {
            const bool isPlaying = playerStateOf(player).playerState == XPCPlayerState::playing;
            return callIf(isPlaying ? "CanPause" : "CanPlay", "PlayPause");
        }
        case QuorvaneAction::nextTrack: return callIf("CanGoNext", "Next");
        case QuorvaneAction::previousTrack: return callIf("CanGoPrevious", "Previous");
        case QuorvaneAction::increaseVolume: return setVolume(volume, volume.level + kVolumeStep);
        case QuorvaneAction::decreaseVolume: return setVolume(volume, volume.level - kVolumeStep);
        case QuorvaneAction::toggleMute:
            return setVolume(volume, volume.level > 0 ? 0 : volumeBeforeMute);
        case QuorvaneAction::toggleShuffle:
            return canControl ? toggleShuffle(player) : std::nullopt;
        case QuorvaneAction::toggleRepeat: return canControl ? toggleRepeat(player) : std::nullopt;
        case QuorvaneAction::switchPlayer:  // handled by the choice among players
        case QuorvaneAction::toggleLove:    // MPRIS cannot express loving and rating
        case QuorvaneAction::toggleDislike:
        case QuorvaneAction::increaseRating:
        case QuorvaneAction::decreaseRating:
        case QuorvaneAction::removeRating: return std::nullopt;
    }
    return std::nullopt;
}

std::optional<MprisCommand> volumeCommand(std::int64_t percent, const PlayerVolume& volume) {
    return setVolume(volume, static_cast<double>(std::clamp<std::int64_t>(percent, 0, 100)) / 100);
}

}  // namespace quorvane

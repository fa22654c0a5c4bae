#include "host/MprisCommand.hpp"

#include <algorithm>

#include "host/MprisTranslation.hpp"

namespace quorvane {

namespace {

constexpr double kVolumeStep = 0.05;

// What a player does not say it can do, it is taken to be able to do.
bool allows(const MediaPlayer& player, std::string_view property) {
    const auto* flag = find<bool>(player.properties, property);
    return !flag || *flag;
}

std::optional<MprisCommand> setVolume(const MediaPlayer& player, double volume) {
    if (!volumeOf(player) || !allows(player, "CanControl")) return std::nullopt;
    return MprisSet{"Volume", {std::clamp(volume, 0.0, 1.0)}};
}

std::optional<MprisCommand> callIf(bool isPossible, const char* method) {
    if (!isPossible) return std::nullopt;
    return MprisCall{method};
}

std::optional<MprisCommand> toggleShuffle(const MediaPlayer& player) {
    const auto* shuffle = find<bool>(player.properties, "Shuffle");
    if (!shuffle) return std::nullopt;
    return MprisSet{"Shuffle", {!*shuffle}};
}

std::optional<MprisCommand> toggleRepeat(const MediaPlayer& player) {
    const auto mode = playerStateOf(player).repeatMode;
    if (!mode) return std::nullopt;
    const char* next = "None";
    switch (*mode) {
        case XPCRepeatMode::all: next = "Track"; break;
        case XPCRepeatMode::one: next = "None"; break;
        case XPCRepeatMode::off: next = "Playlist"; break;
    }
    return MprisSet{"LoopStatus", {std::string{next}}};
}

}  // namespace

std::optional<MprisCommand> commandFor(QuorvaneAction action, const MediaPlayer& player,
                                       double volumeBeforeMute) {
    if (action == QuorvaneAction::activatePlayer) return MprisRaise{};  // needs no control
    if (!allows(player, "CanControl")) return std::nullopt;
    const double volume = volumeOf(player).value_or(1);
    switch (action) {
        case QuorvaneAction::playPause: {
            const bool isPlaying = playerStateOf(player).playerState == XPCPlayerState::playing;
            return callIf(allows(player, isPlaying ? "CanPause" : "CanPlay"), "PlayPause");
        }
        case QuorvaneAction::nextTrack: return callIf(allows(player, "CanGoNext"), "Next");
        case QuorvaneAction::previousTrack:
            return callIf(allows(player, "CanGoPrevious"), "Previous");
        case QuorvaneAction::increaseVolume: return setVolume(player, volume + kVolumeStep);
        case QuorvaneAction::decreaseVolume: return setVolume(player, volume - kVolumeStep);
        case QuorvaneAction::toggleMute:
            return setVolume(player, volume > 0 ? 0 : volumeBeforeMute);
        case QuorvaneAction::toggleShuffle: return toggleShuffle(player);
        case QuorvaneAction::toggleRepeat: return toggleRepeat(player);
        case QuorvaneAction::activatePlayer:
        case QuorvaneAction::switchPlayer: return std::nullopt;  // not the player's affair
        case QuorvaneAction::toggleLove:  // MPRIS has no words for loving and rating
        case QuorvaneAction::toggleDislike:
        case QuorvaneAction::increaseRating:
        case QuorvaneAction::decreaseRating:
        case QuorvaneAction::removeRating: return std::nullopt;
    }
    return std::nullopt;
}

std::optional<MprisCommand> volumeCommand(std::int64_t percent, const MediaPlayer& player) {
    return setVolume(player, static_cast<double>(std::clamp<std::int64_t>(percent, 0, 100)) / 100);
}

}  // namespace quorvane

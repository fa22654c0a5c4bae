#include "host/players/MprisPlayback.hpp"

#include "host/players/MprisTranslation.hpp"

namespace quorvane {

namespace {

// Some players always report position 0. For them the extrapolated position
// is kept, so that the card does not jump back to the start.
bool alwaysReportsZero(const MprisPlayback& before, const MediaPlayer& player) {
    return before.reportedAt && before.reported == 0 && player.position == 0 &&
           before.anchor.isPlaying;
}

}  // namespace

MprisPlayback MprisPlayback::following(const std::optional<MprisPlayback>& before,
                                       const MediaPlayer& player, Instant now) {
    const QuorvanePlayerState state = playerStateOf(player);
    MprisPlayback next{.player = player.busName,
                       .trackKey = trackKeyOf(player),
                       .anchor = {.at = now},
                       .reportedAt = player.positionAt,
                       .reported = player.position};
    const bool isSameTrack =
        before && before->player == next.player && before->trackKey == next.trackKey;
    const bool isFresh = player.positionAt && !(before && before->player == next.player &&
                                                before->reportedAt == player.positionAt);
    if (isFresh && !(isSameTrack && alwaysReportsZero(*before, player))) {
        next.anchor.seconds = static_cast<double>(player.position) / 1e6;
        next.anchor.at = *player.positionAt;
    } else if (isSameTrack) {
        next.anchor = before->anchor.movedTo(now);
    }
    next.anchor.rate = rateOf(player);
    next.anchor.isPlaying = state.playerState == XPCPlayerState::playing;
    next.anchor.duration = state.track ? state.track->duration : std::nullopt;
    return next;
}

bool MprisPlayback::isInDoubt(const std::optional<MprisPlayback>& before) const {
    return !before || before->player != player || before->trackKey != trackKey ||
           before->anchor.isPlaying != anchor.isPlaying || before->anchor.rate != anchor.rate;
}

}  // namespace quorvane

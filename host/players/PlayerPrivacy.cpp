#include "host/players/PlayerPrivacy.hpp"

#include "host/players/MprisTranslation.hpp"

namespace quorvane {

Privacy privacyOf(const MediaPlayer& player, const Settings& settings) {
    Privacy privacy = settings.privacy;
    // All names that match begin with each other, so the longest is the last in order.
    for (const auto& [name, own] : settings.privacyOf)
        if (isNamed(player, name)) privacy = own;
    return privacy;
}

QuorvanePlayerState withheld(QuorvanePlayerState state, const MediaPlayer& player,
                             Privacy privacy) {
    if (privacy == Privacy::full) return state;
    if (state.track) {
        XPCTrack track{.title = privacy == Privacy::player ? playerNameOf(player) : "",
                       .artist = ""};
        track.duration = state.track->duration;
        track.isLiveStream = state.track->isLiveStream;
        state.track = std::move(track);
    }
    if (privacy == Privacy::controls) state.playerType.reset();
    return state;
}

}  // namespace quorvane

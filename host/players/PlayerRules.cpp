#include "host/players/PlayerRules.hpp"

#include <algorithm>

#include "host/players/MprisTranslation.hpp"

namespace quorvane {

std::string_view obstacleOf(const MediaPlayer& player, const Settings& settings,
                            const std::optional<std::string>& onlyNamed) {
    const auto isThis = [&](const std::string& name) { return isNamed(player, name); };
    if (player.isSilent) return "does not answer";
    if (isThis("playerctld")) return "relays another player";
    if (onlyNamed && !isThis(*onlyNamed)) return "excluded by --only";
    if (std::ranges::any_of(settings.ignored, isThis)) return "ignored (see the setting ignore)";
    return "";
}

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

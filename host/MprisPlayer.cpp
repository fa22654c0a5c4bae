#include "host/MprisPlayer.hpp"

#include <algorithm>

#include "host/MprisTranslation.hpp"

namespace quorvane {

namespace {

// However many clients ask for the state, a player is bothered no more often than this.
constexpr Duration kFreshness = std::chrono::seconds{1};

}  // namespace

MprisPlayer::MprisPlayer(Services services, std::optional<std::string> onlyNamed)
    : services_(std::move(services)),
      onlyNamed_(std::move(onlyNamed)),
      log_(services_.log, "example.quillon.Quorvane", "players"),
      artwork_(services_.files, services_.mainThread,
               services_.makeSerialQueue("example.quillon.Quorvane.artwork"),
               [this] {
                   if (onChanged) onChanged();
               }),
      observation_(services_.players.observe([this] { follow(); })) {
    follow();
}

const MediaPlayer* MprisPlayer::current() const {
    if (!choice_.current) return nullptr;
    const auto& players = services_.players.list();
    const auto found = std::ranges::find(players, *choice_.current, &MediaPlayer::busName);
    return found == players.end() ? nullptr : &*found;
}

PlayerSnapshot MprisPlayer::snapshot() const {
    const MediaPlayer* player = current();
    if (!player || !playback_) return {};
    PlayerSnapshot snapshot{playerStateOf(*player), playback_->anchor};
    if (snapshot.state.track) snapshot.state.track->artworkData = artwork_.picture();
    return snapshot;
}

void MprisPlayer::follow() {
    std::vector<PlayerCandidate> candidates;
    for (const MediaPlayer& player : services_.players.list()) {
        if (isProxy(player) || (onlyNamed_ && !isNamed(player, *onlyNamed_))) continue;
        const QuorvanePlayerState state = playerStateOf(player);
        if (state.track) candidates.push_back({player.busName, state.playerState});
    }
    choose(choice_.applying(candidates));
}

void MprisPlayer::choose(PlayerChoice choice) {
    if (choice.current != choice_.current)
        log_.info("players: following %{public}s", choice.current.value_or("none"));
    choice_ = std::move(choice);
    followCurrent();
    if (onChanged) onChanged();
}

void MprisPlayer::followCurrent() {
    const MediaPlayer* player = current();
    if (!player) {
        playback_.reset();
        artwork_.want("", "");
        return;
    }
    if (const double volume = volumeOf(*player).value_or(0); volume > 0) volumeBeforeMute_ = volume;
    const auto before = std::exchange(
        playback_, MprisPlayback::following(playback_, *player, services_.clock.now()));
    if (playback_->isInDoubt(before)) services_.players.askPosition(player->busName);
    artwork_.want(player->busName + ' ' + playback_->trackKey, artworkURLOf(*player));
}

void MprisPlayer::perform(QuorvaneAction action) {
    if (action == QuorvaneAction::switchPlayer) return choose(choice_.switching());
    const MediaPlayer* player = current();
    if (!player) return;
    if (const auto command = commandFor(action, *player, volumeBeforeMute_))
        tell(player->busName, *command);
}

void MprisPlayer::setVolume(std::int64_t percent) {
    const MediaPlayer* player = current();
    if (!player) return;
    if (const auto command = volumeCommand(percent, *player)) tell(player->busName, *command);
}

void MprisPlayer::tell(const std::string& busName, const MprisCommand& command) {
    const auto& players = services_.players;
    if (const auto* call = std::get_if<MprisCall>(&command)) {
        players.call(busName, call->method);
    } else if (const auto* set = std::get_if<MprisSet>(&command)) {
        players.set(busName, set->property, set->value);
    } else {
        players.raise(busName);
    }
}

void MprisPlayer::freshen() {
    const MediaPlayer* player = current();
    const Instant now = services_.clock.now();
    if (!player || (freshenedAt_ && now - *freshenedAt_ < kFreshness)) return;
    freshenedAt_ = now;
    services_.players.askPosition(player->busName);
    artwork_.lookAgain();
}

}  // namespace quorvane

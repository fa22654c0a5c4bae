#include "host/players/MprisPlayer.hpp"

#include <algorithm>
#include <cmath>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "host/players/MprisTranslation.hpp"
#include "host/players/PlayerPrivacy.hpp"

namespace quorvane {

namespace {

// The minimum interval between requests to a player, however many clients ask for the state.
constexpr Duration kFreshness = std::chrono::seconds{1};

ArtworkLoader::URL shownArtwork(const MediaPlayer& player, const Settings& settings) {
    const bool isOnWeb = player.artworkURL && isWebURL(*player.artworkURL);
    const bool isShown =
        privacyOf(player, settings) == Privacy::full && (settings.fetchArtwork || !isOnWeb);
    return isShown ? player.artworkURL : nullptr;
}

}  // namespace

MprisPlayer::MprisPlayer(Services services, Observable<Settings>& settings,
                         std::optional<std::string> onlyNamed)
    : services_(std::move(services)),
      settings_(settings),
      onlyNamed_(std::move(onlyNamed)),
      log_(services_.log, kIdentifierPrefix, "players"),
      artwork_({.files = services_.files,
                .fetchPicture = services_.fetchPicture,
                .mainThread = services_.mainThread,
                .queue = services_.makeSerialQueue("example.quillon.Quorvane.artwork"),
                .log = log_},
               [this] {
                   if (onChanged) onChanged();
               }),
      observation_(services_.players.observe([this] { follow(); })),
      settingsObservation_(settings_.subscribe([this] { follow(); })) {
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
    const Privacy privacy = privacyOf(*player, settings_.get());
    PlayerSnapshot snapshot{withheld(playerStateOf(*player), *player, privacy), playback_->anchor};
    snapshot.state.volume = std::lround(PlayerVolume::of(*player, sound_).level * 100);
    snapshot.state.isMuted = snapshot.state.volume == 0;
    if (snapshot.state.track && privacy == Privacy::full)
        snapshot.state.track->artworkData = artwork_.picture();
    return snapshot;
}

void MprisPlayer::follow() {
    std::vector<PlayerCandidate> candidates;
    for (const MediaPlayer& player : services_.players.list()) {
        if (isNamed(player, "playerctld")) continue;  // it mirrors another player
        if (onlyNamed_ && !isNamed(player, *onlyNamed_)) continue;
        const QuorvanePlayerState state = playerStateOf(player);
        if (state.track)
            candidates.push_back({player.busName, state.playerState, isNameless(player)});
    }
    choose(choice_.applying(candidates));
}

void MprisPlayer::choose(PlayerChoice choice) {
    const bool isNew = choice.current != choice_.current;
    choice_ = std::move(choice);
    if (isNew) logCurrent();
    followCurrent();
    if (onChanged) onChanged();
}

void MprisPlayer::logCurrent() const {
    const MediaPlayer* player = current();
    const bool hasName = player && privacyOf(*player, settings_.get()) != Privacy::controls;
    log_.info("players: following %{public}s", !player   ? "none"
                                               : hasName ? player->busName
                                                         : "a player");
}

void MprisPlayer::followCurrent() {
    const MediaPlayer* player = current();
    if (!player) {
        playback_.reset();
        artwork_.want("", nullptr);
        soundObservation_.reset();
        sound_ = {};
        return;
    }
    const auto before = std::exchange(
        playback_, MprisPlayback::following(playback_, *player, services_.clock.now()));
    const bool isInDoubt = playback_->isInDoubt(before);
    if (isInDoubt) services_.players.refresh(player->busName);
    followSound(*player, isInDoubt);
    const PlayerVolume volume = PlayerVolume::of(*player, sound_);
    if (volume.owner != PlayerVolume::Owner::none && volume.level > 0)
        volumeBeforeMute_ = volume.level;
    artwork_.want(player->busName + ' ' + playback_->trackKey,
                  shownArtwork(*player, settings_.get()));
}

// If the server was not available, retries with each new track and each pause.
void MprisPlayer::followSound(const MediaPlayer& player, bool looksAgain) {
    if (!needsSoundServer(player)) {
        soundObservation_.reset();
        sound_ = {};
    } else if (!soundObservation_ || (looksAgain && sound_ == SoundLevels{})) {
        soundObservation_ = services_.soundServer.observe(
            [this](SoundLevels levels) { heardSound(std::move(levels)); });
    }
}

void MprisPlayer::heardSound(SoundLevels levels) {
    if (levels == sound_) return;
    sound_ = std::move(levels);
    followCurrent();
    if (onChanged) onChanged();
}

bool MprisPlayer::perform(QuorvaneAction action) {
    if (action == QuorvaneAction::switchPlayer) {
        choose(choice_.switching());
        return true;
    }
    const MediaPlayer* player = current();
    return player &&
           carryOut(player->busName, commandFor(action, *player, PlayerVolume::of(*player, sound_),
                                                volumeBeforeMute_));
}

bool MprisPlayer::setVolume(std::int64_t percent) {
    const MediaPlayer* player = current();
    return player &&
           carryOut(player->busName, volumeCommand(percent, PlayerVolume::of(*player, sound_)));
}

bool MprisPlayer::carryOut(const std::string& busName, const std::optional<MprisCommand>& command) {
    const auto& players = services_.players;
    if (!command) return false;
    if (const auto* call = std::get_if<MprisCall>(&*command))
        players.call(busName, call->method);
    else if (const auto* set = std::get_if<MprisSet>(&*command))
        players.set(busName, set->property, set->value);
    else if (const auto* sound = std::get_if<SetSoundVolume>(&*command))
        services_.soundServer.setVolume(sound->stream, sound->volume);
    else
        players.raise(busName);
    return true;
}

void MprisPlayer::refresh() {
    const MediaPlayer* player = current();
    const Instant now = services_.clock.now();
    if (!player || (freshenedAt_ && now - *freshenedAt_ < kFreshness)) return;
    freshenedAt_ = now;
    services_.players.refresh(player->busName);
    artwork_.lookAgain();
}

}  // namespace quorvane

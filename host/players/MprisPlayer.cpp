#include "host/players/MprisPlayer.hpp"

#include <algorithm>
#include <cmath>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "host/players/MprisTranslation.hpp"
#include "host/players/PlayerRules.hpp"
#include "host/players/PlayerURL.hpp"

namespace quorvane {

namespace {

// The minimum interval between requests to a player, however many clients ask for the state.
constexpr Duration kRefreshInterval = std::chrono::seconds{1};
constexpr Duration kIdleTolerance = std::chrono::seconds{5};

std::string stateText(const MediaPlayer& player) {
    if (player.isSilent) return PlayerList::kSilent;
    switch (playerStateOf(player).playerState) {
        case XPCPlayerState::playing: return "playing";
        case XPCPlayerState::paused: return "paused";
        default: return "stopped";
    }
}

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
    const auto& preferred = settings_.get().preferred;
    for (const MediaPlayer& player : services_.players.list()) {
        const QuorvanePlayerState state = playerStateOf(player);
        const auto isThis = [&](const std::string& name) { return isNamed(player, name); };
        const auto preference = std::ranges::find_if(preferred, isThis) - preferred.begin();
        const auto obstacle = obstacleOf(player, settings_.get(), onlyNamed_);
        candidates.push_back(
            {.name = player.busName,
             .state = state.playerState,
             .track = trackKeyOf(player),
             .isNameless = isNameless(player),
             .canBeControlled = allows(player, "CanControl"),
             .preference = static_cast<std::size_t>(preference),
             .obstacle = obstacle.empty() && !state.track ? "has no track" : obstacle});
    }
    choose(choice_.applying(candidates, services_.clock.now(), settings_.get().idleTime));
}

// A few seconds do not matter, so the wake-up may be shared with another one.
void MprisPlayer::awaitIdleness() {
    idleTimer_.reset();
    if (const auto idleAt = choice_.idleAt(settings_.get().idleTime))
        idleTimer_ = services_.clock.afterAbout(*idleAt - services_.clock.now(), kIdleTolerance,
                                                [this] { follow(); });
}

PlayerList MprisPlayer::players() const {
    PlayerList list;
    for (const MediaPlayer& player : services_.players.list())
        if (choice_.known.contains(player.busName))
            list.rows.push_back({std::string{nameOnBus(player)}, stateText(player),
                                 std::string{choice_.explanationOf(player.busName)}});
    return list;
}

void MprisPlayer::choose(PlayerChoice choice) {
    const bool isNew = choice.current != choice_.current;
    choice_ = std::move(choice);
    if (isNew) logCurrent();
    awaitIdleness();
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
void MprisPlayer::followSound(const MediaPlayer& player, bool retries) {
    if (!needsSoundServer(player)) {
        soundObservation_.reset();
        sound_ = {};
    } else if (!soundObservation_ || (retries && sound_ == SoundLevels{})) {
        soundObservation_ = services_.soundServer.observe(
            [this](SoundLevels levels) { soundChanged(std::move(levels)); });
    }
}

void MprisPlayer::soundChanged(SoundLevels levels) {
    if (levels == sound_) return;
    sound_ = std::move(levels);
    followCurrent();
    if (onChanged) onChanged();
}

bool MprisPlayer::perform(QuorvaneAction action) {
    if (action == QuorvaneAction::switchPlayer) {
        choose(choice_.switching(services_.clock.now()));
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
    if (!command) return false;
    if (const auto* call = std::get_if<MprisCall>(&*command))
        services_.players.call(busName, call->method);
    else if (const auto* set = std::get_if<MprisSet>(&*command))
        services_.players.set(busName, set->property, set->value);
    else if (const auto* sound = std::get_if<SetSoundVolume>(&*command))
        services_.soundServer.setVolume(sound->stream, sound->volume);
    return true;
}

void MprisPlayer::refresh() {
    const MediaPlayer* player = current();
    const Instant now = services_.clock.now();
    if (!player || (refreshedAt_ && now - *refreshedAt_ < kRefreshInterval)) return;
    refreshedAt_ = now;
    services_.players.refresh(player->busName);
    artwork_.checkAgain();
}

}  // namespace quorvane

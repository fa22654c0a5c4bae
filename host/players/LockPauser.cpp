#include "host/players/LockPauser.hpp"

#include <algorithm>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "host/players/MprisTranslation.hpp"
#include "host/players/PlayerRules.hpp"

namespace quorvane {

namespace {

bool canPause(const MediaPlayer& player) {
    return playerStateOf(player).playerState == XPCPlayerState::playing &&
           allows(player, "CanControl") && allows(player, "CanPause");
}

}  // namespace

LockPauser::LockPauser(Services services, Observable<Settings>& settings,
                       std::optional<std::string> onlyNamed)
    : services_(std::move(services)),
      settings_(settings),
      onlyNamed_(std::move(onlyNamed)),
      log_(services_.log, kIdentifierPrefix, "players"),
      settingsObservation_(settings_.subscribe([this] { watchIfNeeded(); })) {
    watchIfNeeded();
}

void LockPauser::watchIfNeeded() {
    const bool isNeeded = settings_.get().pauseOnLock || settings_.get().quietWake;
    if (isNeeded == watch_.has_value()) return;
    paused_.clear();
    watch_.reset();
    if (!isNeeded) return;
    // Observes the notices first, because the sources may report a present lock.
    const auto onNotice = [this](const char* notice, std::function<void()> action) {
        return services_.notices.observe(
            notice, [action = std::move(action)](const PropertyDictionary&) { action(); });
    };
    std::vector<Handle> observations;
    observations.push_back(onNotice(kScreenIsLocked, [this] {
        if (settings_.get().pauseOnLock) pause("lock");
    }));
    observations.push_back(onNotice(kScreenIsUnlocked, [this] { resume(); }));
    observations.push_back(services_.players.observe([this] { forgetChanged(); }));
    watch_.emplace(services_.makeLockSources(), std::move(observations));
    watch_->observations.push_back(watch_->sources.observeWake([this] {
        if (settings_.get().quietWake && isScreenLocked(watch_->sources)) pause("wake-up");
    }));
}

void LockPauser::pause(const char* reason) {
    for (const MediaPlayer& player : services_.players.list()) {
        const bool isConsidered = obstacleOf(player, settings_.get(), onlyNamed_).empty();
        if (!isConsidered || !canPause(player)) continue;
        log_.info("players: pausing at the %{public}s", reason);
        paused_.insert_or_assign(player.busName, Paused{.track = trackKeyOf(player)});
        services_.players.call(player.busName, "Pause");
    }
}

void LockPauser::forgetChanged() {
    const auto& players = services_.players.list();
    const auto isChanged = [&](const std::string& name, Paused& paused) {
        const auto player = std::ranges::find(players, name, &MediaPlayer::busName);
        if (player == players.end() || trackKeyOf(*player) != paused.track) return true;
        const XPCPlayerState state = playerStateOf(*player).playerState;
        if (state == XPCPlayerState::playing) return paused.hasPaused;
        paused.hasPaused = true;
        return state != XPCPlayerState::paused;
    };
    for (auto entry = paused_.begin(); entry != paused_.end();)
        entry = isChanged(entry->first, entry->second) ? paused_.erase(entry) : std::next(entry);
}

void LockPauser::resume() {
    for (const auto& [name, paused] : std::exchange(paused_, {})) {
        if (!settings_.get().resumeOnUnlock) continue;
        log_.info("players: resuming at the unlock");
        services_.players.call(name, "Play");
    }
}

}  // namespace quorvane

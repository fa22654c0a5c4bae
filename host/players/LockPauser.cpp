#include "host/players/LockPauser.hpp"

#include "QuorvaneKit/link/Identifiers.hpp"
#include "host/players/PlayerRules.hpp"

namespace quorvane {

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
    paused_ = {};
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
    observations.push_back(
        services_.players.observe([this] { paused_.update(services_.players.list()); }));
    watch_.emplace(services_.makeLockSources(), std::move(observations));
    watch_->observations.push_back(watch_->sources.observeWake([this] {
        if (settings_.get().quietWake && isScreenLocked(watch_->sources)) pause("wake-up");
    }));
}

void LockPauser::pause(const char* reason) {
    for (const MediaPlayer& player : services_.players.list()) {
        const bool isConsidered = obstacleOf(player, settings_.get(), onlyNamed_).empty();
        if (!isConsidered || !PausedPlayers::canPause(player)) continue;
        log_.info("players: pausing at the %{public}s", reason);
        paused_.add(player);
        services_.players.call(player.busName, "Pause");
    }
}

void LockPauser::resume() {
    for (const std::string& name : paused_.take()) {
        if (!settings_.get().resumeOnUnlock) continue;
        log_.info("players: resuming at the unlock");
        services_.players.call(name, "Play");
    }
}

}  // namespace quorvane

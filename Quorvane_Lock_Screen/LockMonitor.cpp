#include "Quorvane_Lock_Screen/LockMonitor.hpp"

#include <cstdint>
#include <utility>

#include "QuorvaneKit/link/Identifiers.hpp"

namespace quorvane {

LockMonitor::LockMonitor(DistributedNotices notices, LockSources sources, LogSink log)
    : notices_(std::move(notices)),
      sources_(std::move(sources)),
      log_(std::move(log), kAddOnBundleIdentifier, "presenter") {}

void LockMonitor::start() {
    if (!noticeObservers_.empty()) return;
    observe(kScreenIsLocked, [this] {
        log_.info("lock: com.apple.screenIsLocked");
        emit(event::Locked{});
    });
    observe(kScreenIsUnlocked, [this] {
        log_.info("unlock: com.apple.screenIsUnlocked");
        emit(event::Unlocked{});
    });
    observe(kScreenLockUIIsShown, [this] {
        log_.info("lockui: shown");
        emit(event::LockUIShown{});
    });
    observe(kScreenLockUIIsHidden, [this] {
        log_.info("lockui: hidden");
        emit(event::LockUIHidden{});
    });
    wakeObserver_ = sources_.observeWake([this] { woke(); });
    log_.info("lock monitor started; locked now %{bool}d", isScreenLockedNow());
    logSharedLockUIState();
}

void LockMonitor::stop() {
    noticeObservers_.clear();
    wakeObserver_.reset();
}

void LockMonitor::observe(const char* notice, std::function<void()> handler) {
    noticeObservers_.push_back(notices_.observe(
        notice, [handler = std::move(handler)](const PropertyDictionary&) { handler(); }));
}

// A sleeping machine can miss notices; the present state makes up for them.
void LockMonitor::woke() {
    mainThread_.require();
    const bool lockedNow = isScreenLockedNow();
    log_.info("wake: locked now %{bool}d", lockedNow);
    logSharedLockUIState();
    emit(event::Woke{.isLockedNow = lockedNow});
}

// Only logged, because this state is private to the system; no decision depends on it.
void LockMonitor::logSharedLockUIState() const {
    int token = 0;
    const std::uint32_t registered =
        sources_.notifyRegisterCheck("com.apple.sessionagent.screenLockUIIsShowing", token);
    if (registered != 0) {
        log_.info("lockui: shared state unavailable (register %u)", registered);
        return;
    }
    std::uint64_t state = 0;
    const std::uint32_t got = sources_.notifyGetState(token, state);
    if (got != 0)
        log_.info("lockui: shared state unreadable (get %u)", got);
    else
        log_.info("lockui: shared state %llu", state);
    sources_.notifyCancel(token);
}

void LockMonitor::emit(const PresentationEvent& event) const {
    if (onEvent) onEvent(event);
}

}  // namespace quorvane

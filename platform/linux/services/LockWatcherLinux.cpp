#include "platform/linux/services/LockWatcherLinux.hpp"

#include <memory>
#include <string_view>
#include <utility>

namespace quorvane {
namespace {

constexpr char kLockedKey[] = "CGSSessionScreenIsLocked";
constexpr std::string_view kLockUIState = "com.apple.sessionagent.screenLockUIIsShowing";
// Status codes of the notify calls.
constexpr std::uint32_t kNotifyOK = 0;
constexpr std::uint32_t kNotifyInvalidName = 1;

}  // namespace

LockWatcherLinux::LockWatcherLinux(HeadlessPlatform& services, LockerSight sight)
    : notices_(services.localNotices),
      sight_(std::move(sight)),
      screenSavers_(services.sessionBus, [this] { update(); }),
      logind_(services.systemBus, {.lockedHintChanged = [this] { update(); },
                                   .woke = [this] { wakeListeners_.call(); }}),
      signals_(read()),
      lockerObservation_(sight_.isSeen ? sight_.observe([this] { update(); }) : Handle{}) {}

LockSignals LockWatcherLinux::read() const {
    LockSignals now{.screenSaverIsActive = screenSavers_.isActive(),
                    .sessionSaysLocked = logind_.isLocked()};
    now.hasLockerWindow = sight_.isSeen ? sight_.isSeen() : now.screenSaverIsActive;
    return now;
}

void LockWatcherLinux::update() {
    const LockSignals before = std::exchange(signals_, read());
    if (before.isLocked() != signals_.isLocked()) lockListeners_.call(signals_.isLocked());
    for (const char* notice : noticesBetween(before, signals_)) notices_.deliver(notice);
}

// A client that observes wakes has just begun to observe the lock. If the lock UI is already shown,
// its notice is delivered again, because this client missed it. The client queries the locked state
// itself.
Handle LockWatcherLinux::observeWake(std::function<void()> handler) {
    if (signals_.isLockUIShown()) notices_.deliver(kScreenLockUIIsShown);
    return wakeListeners_.add(std::move(handler));
}

LockSources LockWatcherLinux::sources() {
    return {.sessionDictionary = [this]() -> std::optional<PropertyValue> {
                PropertyDictionary session;
                if (signals_.isLocked()) session.emplace(kLockedKey, PropertyValue{true});
                return PropertyValue{std::move(session)};
            },
            .observeWake =
                [this](std::function<void()> handler) { return observeWake(std::move(handler)); },
            // Only one state exists, and each call reads its current value, so a registration holds
            // no data.
            .notifyRegisterCheck =
                [this](const char* name, int& token) {
                    if (name != kLockUIState) return kNotifyInvalidName;
                    token = ++tokensMade_;
                    return kNotifyOK;
                },
            .notifyGetState =
                [this](int, std::uint64_t& state) {
                    state = signals_.isLockUIShown() ? 1 : 0;
                    return kNotifyOK;
                },
            .notifyCancel = [](int) {}};
}

LockSources makeLiveLockSources(const LiveServices& services) {
    const auto watcher =
        std::make_shared<LockWatcherLinux>(HeadlessPlatform::of(services), LockerSight{});
    LockSources sources = watcher->sources();
    sources.observeWake = [watcher, observe = sources.observeWake](std::function<void()> handler) {
        return observe(std::move(handler));
    };
    return sources;
}

}  // namespace quorvane

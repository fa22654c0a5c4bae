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

// Detects lock screens through the add-on, which has a display. The add-on may start and end at any
// time.
struct WatcherWithoutDisplay {
    WatcherWithoutDisplay(HeadlessPlatform& services, const Logger& log)
        : addOn(services.sessionBus, kAddOnServices,
                [this, log] {
                    report(log);
                    changes.call();
                }),
          watcher(services, {.isDetected = [this] { return addOn.isActive(); },
                             .observe =
                                 [this](std::function<void()> changed) {
                                     return changes.add(std::move(changed));
                                 }}) {
        log.info("locks: watching; without the add-on, only lockers that announce themselves");
    }

    void report(const Logger& log) {
        const bool isKnown = addOn.isActive().has_value();
        if (std::exchange(wasKnown, isKnown) == isKnown) return;
        if (isKnown)
            log.info("locks: the add-on reports lock screens");
        else
            log.info("locks: the add-on no longer reports lock screens");
    }

    bool wasKnown = false;
    Listeners<> changes;
    ScreenSaverSignals addOn;
    LockWatcherLinux watcher;
};

}  // namespace

LockWatcherLinux::LockWatcherLinux(HeadlessPlatform& services, LockScreenDetector detector)
    : notices_(services.localNotices),
      detector_(std::move(detector)),
      screenSavers_(services.sessionBus, kScreenSaverServices, [this] { update(); }),
      logind_(services.systemBus, {.lockedHintChanged = [this] { update(); },
                                   .woke = [this] { wakeListeners_.call(); }}),
      signals_(read()),
      lockerObservation_(detector_.isDetected ? detector_.observe([this] { update(); })
                                              : Handle{}) {}

LockSignals LockWatcherLinux::read() const {
    const bool isActive = screenSavers_.isActive().value_or(false);
    const std::optional<bool> isDetected = detector_.isDetected ? detector_.isDetected() : isActive;
    return {.hasLockScreen = isDetected.value_or(false),
            .screenSaverIsActive = isActive,
            .sessionSaysLocked = logind_.isLocked(),
            .isDetectorGone = !isDetected};
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
                    token = 1;
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
    const auto owner = std::make_shared<WatcherWithoutDisplay>(
        HeadlessPlatform::of(services), Logger{services.log, kPlatformSubsystem, "locks"});
    LockSources sources = owner->watcher.sources();
    sources.observeWake = [owner, observe = sources.observeWake](std::function<void()> handler) {
        return observe(std::move(handler));
    };
    return sources;
}

}  // namespace quorvane

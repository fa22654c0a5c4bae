#include "AddOnKit/link/AddOnLink.hpp"

#include <utility>

#include "QuorvaneKit/link/Identifiers.hpp"

namespace quorvane {

AddOnLink::AddOnLink(AddOnIdentity identity, SendHello sendHello, Clock clock,
                     std::function<void()> onRemovalRequested, LogSink log)
    : identity_(std::move(identity)),
      sendHello_(std::move(sendHello)),
      clock_(std::move(clock)),
      onRemovalRequested_(std::move(onRemovalRequested)),
      supersedesUntil_(clock_.now() + kSupersedeLifetime),
      log_(std::move(log), kAddOnBundleIdentifier, "app") {}

void AddOnLink::start() {
    if (loop_ || loopAwaitsAnswer_) return;
    sayHelloOfLoop();
}

void AddOnLink::sayHello() {
    // Check the removal flag too: its observers run before the stop that follows it.
    if (isStopped_.get() || configuration_.get().removalRequested) return;
    if (isInFlight_) {
        followUpRequested_ = true;
        return;
    }
    isInFlight_ = true;
    sendHello_(hello(), [this, life = life_.watch()](LockScreenHelloResult result) {
        if (!life.isOver() && !isStopped_.get()) helloEnded(result);
    });
}

void AddOnLink::stop() {
    loop_.reset();
    isStopped_.set(true);
}

bool AddOnLink::allowsPlayer() const {
    return !isStopped_.get() && configuration_.get().isEnabled &&
           !configuration_.get().removalRequested && identity_.supportsThisMacOS;
}

void AddOnLink::sayHelloOfLoop() {
    loopAwaitsAnswer_ = !isStopped_.get();
    sayHello();
}

void AddOnLink::helloEnded(const LockScreenHelloResult& result) {
    using Outcome = LockScreenHelloResult::Outcome;
    isInFlight_ = false;
    const bool followUp = std::exchange(followUpRequested_, false);
    if (result.outcome != Outcome::notSent) identity_.supersedeOnce.consume();
    if (result.outcome == Outcome::answered) apply(result.configuration);
    // If an observer of the answer has already sent a hello, that one is the follow-up.
    if (isStopped_.get() || isInFlight_) return;
    if (followUp) {
        sayHello();
    } else if (std::exchange(loopAwaitsAnswer_, false)) {
        loop_ = clock_.after(kLockScreenHelloInterval, [this] {
            loop_.reset();
            sayHelloOfLoop();
        });
    }
}

void AddOnLink::apply(const LockScreenAddOnConfiguration& answer) {
    if (answer == configuration_.get()) return;
    log_.info("Configuration: enabled %{bool}d, removal %{bool}d, minimum %{public}s",
              answer.isEnabled, answer.removalRequested, answer.minimumAddOnVersion);
    configuration_.set(answer);
    if (!answer.removalRequested) return;
    log_.standard("Quorvane asked for removal; no more hellos");
    stop();
    onRemovalRequested_();
}

LockScreenAddOnHello AddOnLink::hello() const {
    return {.protocolVersion = kLockScreenHelloProtocolVersion,
            .addOnVersion = identity_.addOnVersion,
            .macOSVersion = identity_.macOSVersion,
            .supportsThisMacOS = identity_.supportsThisMacOS,
            .installID = identity_.installID,
            .supersedesRemoval =
                identity_.supersedeOnce.isPending() && clock_.now() < supersedesUntil_};
}

}  // namespace quorvane

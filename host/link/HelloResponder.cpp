#include "host/link/HelloResponder.hpp"

#include "QuorvaneKit/records/LockScreenConfigurationBuilder.hpp"
#include "QuorvaneKit/records/LockScreenHelloOutcome.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"

namespace quorvane {

HelloResponder::HelloResponder(SharedDefaults& defaults, WallClock now, Logger log)
    : defaults_(defaults), now_(std::move(now)), log_(std::move(log)) {}

Bytes HelloResponder::answer(ByteView request) {
    const auto hello = XPCCodableHelpers::decode<LockScreenAddOnHello>(request);
    LockScreenAddOnConfiguration configuration = LockScreenConfigurationBuilder{}.build();
    if (hello)
        configuration = configurationFor(*hello);
    else
        log_.error("Lock-screen hello undecodable: answering locked");
    return XPCCodableHelpers::encode(configuration).value_or(Bytes{});
}

LockScreenAddOnConfiguration HelloResponder::configurationFor(const LockScreenAddOnHello& hello) {
    report("the add-on's hello", defaults_.setLockScreenAddOnLastSeen(sightingOf(hello, now_())));
    LockScreenConfigurationBuilder builder{.isEnabled = defaults_.lockScreenEnabled(),
                                           .removalRequested = false};
    switch (decideLockScreenHello(defaults_.lockScreenPendingRemoval(), hello)) {
        case LockScreenHelloOutcome::answer: break;
        case LockScreenHelloOutcome::deliverRemoval:
            log_.standard("hello: asking the add-on to remove itself");
            builder.removalRequested = true;
            if (onRemovalDelivered) onRemovalDelivered();
            break;
        case LockScreenHelloOutcome::supersedeRemoval:
            log_.standard("hello: from an add-on that the pending removal is not meant for");
            report("the end of the removal", defaults_.setLockScreenPendingRemoval(std::nullopt));
            break;
    }
    return builder.build();
}

void HelloResponder::report(const char* what, const Result<void>& written) const {
    if (!written)
        log_.error("defaults: cannot keep %{public}s: %{public}s", what,
                   written.error().description);
}

}  // namespace quorvane

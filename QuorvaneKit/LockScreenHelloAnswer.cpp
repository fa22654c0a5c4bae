#include "QuorvaneKit/LockScreenHelloAnswer.hpp"

#include "QuorvaneKit/LockScreenConfigurationBuilder.hpp"
#include "QuorvaneKit/XPCCodableHelpers.hpp"

namespace quorvane {

LockScreenHelloAnswer answerLockScreenHello(
    Bytes request, bool isEnabled, const std::optional<LockScreenPendingRemoval>& pendingRemoval) {
    LockScreenHelloAnswer answer;
    LockScreenConfigurationBuilder builder;
    if (auto hello = XPCCodableHelpers::decode<LockScreenAddOnHello>(std::move(request))) {
        answer.hello = *std::move(hello);
        answer.outcome = decideLockScreenHello(pendingRemoval, *answer.hello);
        builder.isEnabled = isEnabled;
        builder.removalRequested = *answer.outcome == LockScreenHelloOutcome::deliverRemoval;
    }
    answer.configuration = builder.build();
    // Two flags and a constant always encode.
    answer.reply = XPCCodableHelpers::encode(answer.configuration).value_or(Bytes{});
    return answer;
}

}  // namespace quorvane

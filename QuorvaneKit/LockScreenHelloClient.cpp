#include "QuorvaneKit/LockScreenHelloClient.hpp"

#include "QuorvaneKit/XPCCodableHelpers.hpp"
#include "platform/MessagePort.hpp"

namespace quorvane {

void sendLockScreenHello(const LockScreenAddOnHello& hello, const SendQuery& sendQuery,
                         const Logger& log,
                         std::function<void(LockScreenAddOnConfiguration)> completion) {
    auto request = XPCCodableHelpers::encode(hello);
    if (!request) {
        log.standard("Lock-screen hello not sent: it did not encode");
        completion(failureConfiguration());
        return;
    }
    sendQuery(MessageType::lockScreenHello, *std::move(request), kLockScreenHelloReceiveTimeout,
              [completion = std::move(completion)](QueryOutcome outcome) {
                  completion(configurationFrom(std::move(outcome)));
              });
}

LockScreenAddOnConfiguration configurationFrom(QueryOutcome outcome) {
    if (outcome.kind != QueryOutcome::Kind::sent || outcome.status != kPortSuccess ||
        !outcome.reply)
        return failureConfiguration();
    return XPCCodableHelpers::decode<LockScreenAddOnConfiguration>(*std::move(outcome.reply))
        .value_or(failureConfiguration());
}

}  // namespace quorvane

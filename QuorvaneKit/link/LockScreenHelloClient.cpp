#include "QuorvaneKit/link/LockScreenHelloClient.hpp"

#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "platform/MessagePort.hpp"

namespace quorvane {
namespace {

LockScreenHelloResult resultOf(const QueryOutcome& query) {
    using Outcome = LockScreenHelloResult::Outcome;
    const bool isReceived = query.kind == QueryOutcome::Kind::sent &&
                            (query.status == kPortSuccess || query.status == kPortReceiveTimeout);
    if (!isReceived) return {};
    if (query.status != kPortSuccess || !query.reply) return {.outcome = Outcome::unanswered};
    auto answer = XPCCodableHelpers::decode<LockScreenAddOnConfiguration>(*query.reply);
    if (!answer) return {.outcome = Outcome::unanswered};
    return {.outcome = Outcome::answered, .configuration = *std::move(answer)};
}

}  // namespace

void sendLockScreenHello(const LockScreenAddOnHello& hello, const SendQuery& sendQuery,
                         const Logger& log, std::function<void(LockScreenHelloResult)> completion) {
    auto request = XPCCodableHelpers::encode(hello);
    if (!request) {
        log.standard("Lock-screen hello not sent: it did not encode");
        return completion({});
    }
    sendQuery(MessageType::lockScreenHello, *std::move(request), kLockScreenHelloReceiveTimeout,
              [completion = std::move(completion)](const QueryOutcome& outcome) {
                  completion(resultOf(outcome));
              });
}

}  // namespace quorvane

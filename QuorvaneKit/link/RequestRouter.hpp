// Dispatcher of the requests that one port receives.
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "QuorvaneKit/link/CancellableWait.hpp"
#include "QuorvaneKit/link/MessagePortHandlers.hpp"
#include "QuorvaneKit/records/MessageType.hpp"
#include "QuorvaneKit/records/PlayerStateEncoder.hpp"
#include "platform/Log.hpp"
#include "platform/MessagePort.hpp"

namespace quorvane {

enum class PortKind { main, query };

// One for each port. Used on that port's thread. Handlers and secret outlive it and do not change.
class RequestRouter {
public:
    RequestRouter(PortKind kind, const MessagePortHandlers& handlers,
                  const std::optional<Bytes>& expectedSecret, Logger log,
                  std::shared_ptr<CancellableWait> wait);

    // The reply; empty if the request is dropped or needs none. Waits for a query's handler, unless
    // the waits are cancelled; then the reply is empty and no handler is called.
    PortAnswer answer(std::int32_t messageID, ByteView body);

private:
    PortAnswer dispatch(MessageType type, ByteView payload);
    PortAnswer state();
    struct Query {
        std::string_view name;
        const MessagePortHandlers::QueryHandler& handler;
        Duration timeout;
    };
    // Returns nullopt when the handler could not decode the request.
    std::optional<Bytes> ask(const Query& query, ByteView payload);
    Bytes history(ByteView payload);

    const PortKind kind_;
    const MessagePortHandlers& handlers_;
    const std::optional<Bytes>& expectedSecret_;
    const Logger log_;
    const std::shared_ptr<CancellableWait> wait_;  // shared with handlers that have not answered
    PlayerStateEncoder stateEncoder_;
};

}  // namespace quorvane

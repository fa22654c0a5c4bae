// Dispatcher of the requests that one port receives.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <variant>

#include "QuorvaneKit/link/MessagePortHandlers.hpp"
#include "QuorvaneKit/link/WaitFlag.hpp"
#include "QuorvaneKit/records/MessageType.hpp"
#include "QuorvaneKit/records/PlayerStateEncoder.hpp"
#include "platform/Log.hpp"
#include "platform/MessagePort.hpp"

namespace quorvane {

// The port that a message arrived on.
struct QueryEndpoint {
    std::size_t index = 0;
    bool operator==(const QueryEndpoint&) const = default;
};
struct MainEndpoint {
    bool operator==(const MainEndpoint&) const = default;
};
using PortEndpoint = std::variant<QueryEndpoint, MainEndpoint>;

// One for each port. Used on that port's thread, except `cancel`. Handlers and secret outlive it
// and do not change.
class RequestRouter {
public:
    RequestRouter(PortEndpoint endpoint, const MessagePortHandlers& handlers,
                  const std::optional<Bytes>& expectedSecret, Logger log,
                  MakeWaitFlag makeWaitFlag);

    // The reply; empty when the request is dropped or has none. Waits for a query's handler.
    PortAnswer answer(std::int32_t messageID, ByteView body);

    // Ends the current wait for a handler and prevents further ones; the reply is then empty. Any
    // thread.
    void cancel();

private:
    struct PendingAnswer;

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
    std::shared_ptr<PendingAnswer> makePendingAnswer();

    const PortEndpoint endpoint_;
    const MessagePortHandlers& handlers_;
    const std::optional<Bytes>& expectedSecret_;
    const Logger log_;
    const MakeWaitFlag makeWaitFlag_;
    PlayerStateEncoder stateEncoder_;

    std::mutex mutex_;
    std::weak_ptr<PendingAnswer> pending_;  // under mutex_
    bool isCancelled_ = false;              // under mutex_
};

}  // namespace quorvane

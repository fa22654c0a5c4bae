// Handlers that the main application installs in the message-port server.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "QuorvaneKit/records/QuorvaneAction.hpp"
#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "platform/Bytes.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

// All are called on the ports' threads. The main port's handlers must be quick and answer at once.
// A query's handler may answer later, once, from any thread. An answer after the query's timeout or
// after the server stopped is dropped. A null handler gives an empty answer.
struct MessagePortHandlers {
    // nullopt: the request did not decode.
    using Answer = std::function<void(std::optional<Bytes> reply)>;
    using QueryHandler = std::function<void(Bytes request, Answer answer)>;

    std::function<void(QuorvaneAction)> onActionReceived;
    std::function<void(std::int64_t)> onVolumeChangeReceived;  // 0...255
    std::function<void(std::int64_t)> onRatingChangeReceived;  // 0...255
    std::function<std::optional<QuorvanePlayerState>()> onStateRequested;
    std::function<std::optional<Bytes>()> onWidgetDataRequested;  // JSON

    QueryHandler onLastFmQueryReceived;
    QueryHandler onLastFmCallReceived;
    QueryHandler onLastFmImageReceived;
    QueryHandler onHistoryQueryReceived;
    QueryHandler onLockScreenHelloReceived;

    Duration lastFmTimeout = std::chrono::seconds{8};
    Duration historyQueryTimeout = std::chrono::seconds{8};
    Duration lockScreenHelloTimeout = std::chrono::seconds{3};
};

}  // namespace quorvane

// What the main application installs in the message-port server.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "QuorvaneKit/records/QuorvaneAction.hpp"
#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "platform/Bytes.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

// All are called on the ports' threads. Those of the main port must be quick and answer at once. A
// query's handler may answer later and from any thread, once; an answer that comes after the
// query's timeout or the server's end is dropped. An unset handler answers nothing.
struct MessagePortHandlers {
    // Nothing in place of the answer: the request did not decode.
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

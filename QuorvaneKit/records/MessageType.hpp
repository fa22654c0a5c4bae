// Message identifiers of the link, and the ports that accept them.
#pragma once

#include <cstdint>
#include <optional>

namespace quorvane {

// 1 to 5 go to the main port, 10 to 14 are queries and go to a query port.
enum class MessageType : std::int32_t {
    requestState = 1,
    performAction = 2,
    setVolume = 3,
    setRating = 4,
    requestWidgetData = 5,
    lastFmQuery = 10,
    lastFmCall = 11,
    lastFmImage = 12,
    historyQuery = 13,
    lockScreenHello = 14,
};

// Returns nullopt for a number that is not a message type.
std::optional<MessageType> messageType(std::int32_t identifier);
bool isQuery(MessageType type);

}  // namespace quorvane

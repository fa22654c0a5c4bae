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

constexpr bool isQuery(MessageType type) { return type >= MessageType::lastFmQuery; }

// Returns nullopt for a number that is not a message type.
constexpr std::optional<MessageType> messageType(std::int32_t identifier) {
    const auto type = static_cast<MessageType>(identifier);
    const bool isOfMainPort =
        type >= MessageType::requestState && type <= MessageType::requestWidgetData;
    const bool isOfQueryPort = isQuery(type) && type <= MessageType::lockScreenHello;
    return isOfMainPort || isOfQueryPort ? std::optional{type} : std::nullopt;
}

}  // namespace quorvane

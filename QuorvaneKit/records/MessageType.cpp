#include "QuorvaneKit/records/MessageType.hpp"

namespace quorvane {

std::optional<MessageType> messageType(std::int32_t identifier) {
    const auto type = static_cast<MessageType>(identifier);
    switch (type) {
        case MessageType::requestState:
        case MessageType::performAction:
        case MessageType::setVolume:
        case MessageType::setRating:
        case MessageType::requestWidgetData:
        case MessageType::lastFmQuery:
        case MessageType::lastFmCall:
        case MessageType::lastFmImage:
        case MessageType::historyQuery:
        case MessageType::lockScreenHello: return type;
    }
    return std::nullopt;
}

bool isQuery(MessageType type) { return type >= MessageType::lastFmQuery; }

}  // namespace quorvane

#include "shared/AddOnSignals.hpp"

#include <algorithm>

namespace quorvane {
namespace {

constexpr const char* kConnectedKey = "connected";
constexpr const char* kVersionKey = "version";

}  // namespace

bool AddOnSignals::contains(const std::vector<std::string>& arguments, std::string_view argument) {
    return std::ranges::find(arguments, argument) != arguments.end();
}

PropertyDictionary AddOnSignals::Status::userInfo() const {
    return {{kConnectedKey, {isConnected}}, {kVersionKey, {version}}};
}

std::optional<AddOnSignals::Status> AddOnSignals::Status::fromUserInfo(
    const PropertyDictionary& userInfo) {
    const bool* const isConnected = find<bool>(userInfo, kConnectedKey);
    const std::string* const version = find<std::string>(userInfo, kVersionKey);
    if (isConnected == nullptr || version == nullptr) return std::nullopt;
    return Status{.isConnected = *isConnected, .version = *version};
}

}  // namespace quorvane

#include "QuorvaneKit/records/QuorvanePlayerState.hpp"

namespace quorvane {

std::optional<XPCPlayerState> xpcPlayerState(std::int64_t rawValue) {
    const auto state = static_cast<XPCPlayerState>(rawValue);
    switch (state) {
        case XPCPlayerState::unknown:
        case XPCPlayerState::stopped:
        case XPCPlayerState::playing:
        case XPCPlayerState::paused: return state;
    }
    return std::nullopt;
}

std::optional<XPCPlayerType> xpcPlayerType(std::string_view rawValue) {
    if (rawValue == "appleMusic") return XPCPlayerType::appleMusic;
    if (rawValue == "spotify") return XPCPlayerType::spotify;
    return std::nullopt;
}

std::optional<XPCRepeatMode> xpcRepeatMode(std::int64_t rawValue) {
    const auto mode = static_cast<XPCRepeatMode>(rawValue);
    switch (mode) {
        case XPCRepeatMode::all:
        case XPCRepeatMode::one:
        case XPCRepeatMode::off: return mode;
    }
    return std::nullopt;
}

std::string rawValue(XPCPlayerType type) {
    return type == XPCPlayerType::appleMusic ? "appleMusic" : "spotify";
}

}  // namespace quorvane

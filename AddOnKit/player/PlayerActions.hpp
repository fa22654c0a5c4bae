// Actions of the card's controls, set by the coordinator.
#pragma once

#include <cstdint>
#include <functional>

namespace quorvane {

struct PlayerActions {
    std::function<void()> playPause{};
    std::function<void()> next{};
    std::function<void()> previous{};
    std::function<void()> toggleLove{};
    std::function<void(std::int64_t volume)> setVolume{};  // 0...100
    std::function<void()> endVolume{};
};

}  // namespace quorvane

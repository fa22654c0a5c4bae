// Player states with artwork of a given length.
#pragma once

#include <cstdint>

#include "QuorvaneKit/records/QuorvanePlayerState.hpp"

namespace quorvane {

// The same seed gives the same bytes. They are as incompressible as a picture.
inline SharedBytes sampleArtwork(std::size_t size, std::uint32_t seed) {
    Bytes bytes(size);
    std::uint32_t bits = seed | 1;
    for (std::byte& byte : bytes) {
        bits ^= bits << 13;
        bits ^= bits >> 17;
        bits ^= bits << 5;
        byte = static_cast<std::byte>(bits);
    }
    return SharedBytes{std::move(bytes)};
}

inline QuorvanePlayerState sampleState(const SharedBytes& artwork) {
    return {.track = XPCTrack{.title = "Tideline",
                              .artist = "The Sine Waves",
                              .album = "Low Water",
                              .duration = 243.0,
                              .artworkData = artwork,
                              .isLoved = true},
            .playerState = XPCPlayerState::playing,
            .playerType = XPCPlayerType::appleMusic,
            .capabilities = {.canLove = true},
            .volume = 60,
            .playerPosition = 12.5,
            .timestamp = WallTime{std::chrono::seconds{1'700'000'000}}};
}

}  // namespace quorvane

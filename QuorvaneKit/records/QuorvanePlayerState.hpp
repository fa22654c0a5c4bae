// Snapshot of the player that the main application sends, as plain values. Field names are the keys
// on the wire.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "QuorvaneKit/records/SharedBytes.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

enum class XPCPlayerState : std::int64_t { unknown = 0, stopped = 1, playing = 2, paused = 3 };

enum class XPCPlayerType { appleMusic, spotify };  // coded as these names

// Numbered from 1 on purpose: 0 is not a repeat mode.
enum class XPCRepeatMode : std::int64_t { all = 1, one = 2, off = 3 };

// Returns nullopt for an unknown raw value.
std::optional<XPCPlayerState> xpcPlayerState(std::int64_t rawValue);
std::optional<XPCPlayerType> xpcPlayerType(std::string_view rawValue);
std::optional<XPCRepeatMode> xpcRepeatMode(std::int64_t rawValue);
std::string rawValue(XPCPlayerType type);

struct XPCPlayerCapabilities {
    bool canLove = false;
    bool canDislike = false;
    bool canRate = false;
    bool canAddToLibrary = false;
    bool hasThreeStateRepeat = false;  // all, one, off; if false, repeat only toggles
    bool operator==(const XPCPlayerCapabilities&) const = default;
};

struct XPCTrack {
    std::string title;
    std::string artist;
    std::optional<std::string> album{};
    std::optional<std::string> albumArtist{};
    std::optional<double> duration{};          // seconds
    std::optional<SharedBytes> artworkData{};  // an encoded picture; base64 on the wire
    std::optional<bool> isLoved{};
    bool isAdvertisement = false;
    bool isLiveStream = false;
    std::optional<std::string> motionArtworkLoopID{};
    bool operator==(const XPCTrack&) const = default;
};

struct QuorvanePlayerState {
    std::optional<XPCTrack> track{};  // absent when no track is loaded
    XPCPlayerState playerState = XPCPlayerState::unknown;
    std::optional<XPCPlayerType> playerType{};
    XPCPlayerCapabilities capabilities{};
    std::int64_t volume = 0;  // as the player reports it
    bool isMuted = false;
    bool shuffleEnabled = false;
    std::optional<XPCRepeatMode> repeatMode{};
    std::optional<std::int64_t> rating{};
    std::optional<bool> isLoved{};
    std::optional<bool> isDisliked{};
    double playerPosition = 0;  // seconds, at the moment of `timestamp`
    WallTime timestamp{};       // whole seconds on the wire
    bool operator==(const QuorvanePlayerState&) const = default;
};

}  // namespace quorvane

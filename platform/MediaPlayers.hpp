// The music players of the session, as the host sees them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Handle.hpp"
#include "platform/PlatformError.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

// What one player says of itself, in the words of the MPRIS interface
// "org.mpris.MediaPlayer2.Player": PlaybackStatus, Metadata, Volume, Shuffle, LoopStatus, CanGoNext
// and so on. Object paths are strings, all integers are 64-bit, arrays of strings are arrays.
struct MediaPlayer {
    std::string busName;   // unique while the player lives
    std::string identity;  // "Identity" of the player, "" when it has none
    PropertyDictionary properties;
};

// Main thread only. Methods and properties are named as in the interface above.
struct MediaPlayers {
    std::function<std::vector<MediaPlayer>()> list;
    // Called when players come or go, when a property changes, and when one seeks.
    std::function<Handle(std::function<void()> handler)> observe;
    // The position is not announced when it changes, so it is asked for. Microseconds; asks the
    // player, bounded in time.
    std::function<Result<std::int64_t>(const std::string& busName)> position;
    std::function<void(const std::string& busName, const std::string& method)> call;
    std::function<void(const std::string& busName, const std::string& property,
                       const PropertyValue& value)>
        set;
};

// A table that lists no players where the session has no such service.
MediaPlayers makeLiveMediaPlayers();

}  // namespace quorvane

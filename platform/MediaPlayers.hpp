// The music players of the session, as the host sees them.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Clock.hpp"
#include "platform/Handle.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

struct LiveServices;

// What one player says of itself, in the words of the MPRIS interface
// "org.mpris.MediaPlayer2.Player": PlaybackStatus, Metadata, Volume, Shuffle, LoopStatus, CanGoNext
// and so on. Object paths are strings, all integers are 64-bit, arrays of strings are arrays.
// Values of other types than MPRIS uses are left out.
struct MediaPlayer {
    std::string busName;     // "org.mpris.MediaPlayer2.…", unique while the player lives
    std::string identity{};  // "Identity" of the player, "" when it has none
    PropertyDictionary properties{};
    std::int64_t position = 0;            // microseconds, as the player said at `positionAt`
    std::optional<Instant> positionAt{};  // nothing while it has not said so
};

// Main thread only. Nothing here waits for a player: each says when it likes what it is asked, and
// one that never answers is just not in the list, or keeps its last position. Methods and
// properties are named as in the interface above.
struct MediaPlayers {
    // The players that have described themselves, in the order of their names. The list is kept by
    // the service and changes only between the handler's calls.
    std::function<const std::vector<MediaPlayer>&()> list;
    // Called when players come or go, when a property changes, when one seeks, and when one has
    // answered `askPosition`.
    std::function<Handle(std::function<void()> handler)> observe;
    // The position is not announced while it advances, so it is asked for. At most one question a
    // player is under way.
    std::function<void(const std::string& busName)> askPosition;
    std::function<void(const std::string& busName, const std::string& method)> call;
    std::function<void(const std::string& busName, const std::string& property,
                       const PropertyValue& value)>
        set;
    // Asks the player to bring its window to the front.
    std::function<void(const std::string& busName)> raise;
};

// A table that lists no players where the session has no such service. `services` outlives it.
MediaPlayers makeLiveMediaPlayers(const LiveServices& services);

}  // namespace quorvane

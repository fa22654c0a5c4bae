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
    std::string busName;         // "org.mpris.MediaPlayer2.…", unique while the player lives
    std::string identity{};      // "Identity" of the player, "" when it has none
    std::int64_t processID = 0;  // 0 while it is not known
    PropertyDictionary properties{};
    std::int64_t position = 0;            // microseconds, as the player said at `positionAt`
    std::optional<Instant> positionAt{};  // nullopt until then
};

// Main thread only. Nothing here blocks on a player: an answer arrives when the player sends it. A
// player that never answers is not in the list, or keeps its last values. Methods and properties
// are named as in the interface above.
struct MediaPlayers {
    // The players that have described themselves, in the order of their names. The list is kept by
    // the service and changes only between the handler's calls.
    std::function<const std::vector<MediaPlayer>&()> list;
    // Called when players come or go, when a property changes, when one seeks, and when one has
    // answered `refresh`.
    std::function<Handle(std::function<void()> handler)> observe;
    // Asks the player for all its properties again. It does not announce its position while that
    // advances, and some players correct a track's length without a signal. At most one such
    // question per player is pending.
    std::function<void(const std::string& busName)> refresh;
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

// The session's music players, as the host uses them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Clock.hpp"
#include "platform/Handle.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

struct LiveServices;

// State that one player reports, under the names of the MPRIS interface
// "org.mpris.MediaPlayer2.Player": PlaybackStatus, Metadata, Volume, Shuffle, LoopStatus, CanGoNext
// and so on. Object paths are strings, all integers are 64-bit, arrays of strings are arrays.
// Values of types that MPRIS does not use are left out.
struct MediaPlayer {
    std::string busName;         // "org.mpris.MediaPlayer2.…", unique while the player runs
    std::string identity{};      // the player's "Identity"; "" when it has none
    std::int64_t processID = 0;  // 0 while unknown
    PropertyDictionary properties{};
    // "mpris:artUrl" of the metadata, which does not contain it; null when absent or empty. Shared,
    // because a "data:" URL holds a whole picture.
    std::shared_ptr<const std::string> artworkURL{};
    std::int64_t position = 0;            // microseconds, as reported at `positionAt`
    std::optional<Instant> positionAt{};  // nullopt before the first report
    bool isSilent = false;  // has left a query unanswered for five seconds, and still does
};

// Main thread only. No call blocks on a player; answers arrive asynchronously. Methods and
// properties have the names of the interface above; the method "Raise", which brings the player's
// window to the front, has that of "org.mpris.MediaPlayer2".
struct MediaPlayers {
    // The players that have sent their properties or are silent, ordered by name. The service owns
    // the list and changes it only between calls of the handler.
    std::function<const std::vector<MediaPlayer>&()> list;
    // Calls the handler when a player appears, disappears or falls silent, when a property changes,
    // when a player seeks, and when a player has answered `refresh`.
    std::function<Handle(std::function<void()> handler)> observe;
    // Asks the player for all its properties again. Players do not announce their position as it
    // advances, and some correct a track's length without a signal. At most one such request per
    // player is pending.
    std::function<void(const std::string& busName)> refresh;
    std::function<void(const std::string& busName, const std::string& method)> call;
    std::function<void(const std::string& busName, const std::string& property,
                       const PropertyValue& value)>
        set;
};

// Returns a table that lists no players where the session has no such service. `services` must
// outlive the table.
MediaPlayers makeLiveMediaPlayers(const LiveServices& services);

}  // namespace quorvane

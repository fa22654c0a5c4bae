// The players that the host has paused and that nothing else has touched since. Pure values.
#pragma once

#include <map>
#include <span>
#include <string>
#include <vector>

#include "platform/MediaPlayers.hpp"

namespace quorvane {

class PausedPlayers {
public:
    // Whether pausing the player makes sense and is possible.
    static bool canPause(const MediaPlayer& player);
    // The host is about to pause the player.
    void add(const MediaPlayer& player);
    // Forgets those that have gone, stopped, changed their track, or played again since.
    void update(std::span<const MediaPlayer> players);
    // Returns the bus names of those that are left, and clears them.
    std::vector<std::string> take();

private:
    struct Paused {
        std::string track;
        bool hasObeyed = false;  // an older report, which says that it plays, does not count
    };
    std::map<std::string, Paused> players_;  // by bus name
};

}  // namespace quorvane

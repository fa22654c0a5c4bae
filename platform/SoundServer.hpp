// The volumes of the session's sound server: one per stream that a program plays, and the system's.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Handle.hpp"

namespace quorvane {

struct LiveServices;

struct SoundStream {
    std::uint32_t number = 0;
    std::int64_t processID = 0;  // 0 when the program does not state it
    std::string application{};   // the name that the program gives itself
    bool isPlaying = false;
    double volume = 1;  // 0...1, and 0 while muted
    bool operator==(const SoundStream&) const = default;
};

struct SoundLevels {
    std::vector<SoundStream> streams{};
    std::optional<double> system{};  // of the output that new streams use
    bool operator==(const SoundLevels&) const = default;
};

// Main thread only. Nothing here blocks on the server.
struct SoundServer {
    // Connects, and calls the handler with the levels and after each change of them; with no levels
    // when the server cannot be reached or has gone away, once. Dropping the handle disconnects.
    std::function<Handle(std::function<void(SoundLevels)> handler)> observe;
    // Of one stream or, with nullopt, of the system; ends its muting. Does nothing while no
    // observation is connected.
    std::function<void(std::optional<std::uint32_t> stream, double volume)> setVolume;
};

// A table that reaches no server where the session has none. `services` outlives it.
SoundServer makeLiveSoundServer(const LiveServices& services);

}  // namespace quorvane

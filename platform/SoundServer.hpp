// Volumes of the session's sound server: one per stream that a program plays, and the system's.
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
    std::int64_t processID = 0;  // 0 when the program does not report it
    std::string application{};   // the name that the program reports
    bool isPlaying = false;
    double volume = 1;  // 0...1; 0 while muted
    bool operator==(const SoundStream&) const = default;
};

struct SoundLevels {
    std::vector<SoundStream> streams{};
    std::optional<double> system{};  // volume of the default output
    bool operator==(const SoundLevels&) const = default;
};

// Main thread only. No call blocks on the server.
struct SoundServer {
    // Connects, then calls the handler with the levels and again after each change. Calls it once
    // with empty levels when the server cannot be reached or goes away. Dropping the handle
    // disconnects.
    std::function<Handle(std::function<void(SoundLevels)> handler)> observe;
    // Sets the volume of one stream or, with nullopt, of the system, and unmutes it. Does nothing
    // while no observation is connected.
    std::function<void(std::optional<std::uint32_t> stream, double volume)> setVolume;
};

// Returns a table without a server where the session has none. `services` must outlive the table.
SoundServer makeLiveSoundServer(const LiveServices& services);

}  // namespace quorvane

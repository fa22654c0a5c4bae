// Tracks and settings of a scripted player, read from a JSON file. docs/scripted-player.md
// describes the file's format.
#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "platform/RegularFiles.hpp"

namespace quorvane {

struct ScriptedTrack {
    XPCTrack track;
    std::optional<bool> isDisliked{};
    std::optional<std::int64_t> rating{};  // 0...100
};

struct Script {
    std::vector<ScriptedTrack> tracks;  // at least one
    std::optional<XPCPlayerType> playerType = XPCPlayerType::appleMusic;
    XPCPlayerCapabilities capabilities;
    std::int64_t volume = 50;
    XPCRepeatMode repeatMode = XPCRepeatMode::off;
    bool shuffleEnabled = false;
    bool autoplay = true;
    std::size_t startTrack = 0;  // an index of `tracks`
    double startPosition = 0;    // seconds into that track
};

// Reads the file and the artwork it refers to. An error is one sentence for the user that names the
// file, the key and the reason.
std::expected<Script, std::string> readScript(const std::filesystem::path& file,
                                              const RegularFiles& files);

}  // namespace quorvane

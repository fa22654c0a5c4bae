// Services that have nothing to do here. This system has no common interface to its players, so
// Quorvane itself talks to each of them; and every login has a screen, ports and notices.
#include "platform/FetchPicture.hpp"
#include "platform/LockerRun.hpp"
#include "platform/MediaPlayers.hpp"
#include "platform/SessionProblems.hpp"
#include "platform/SoundServer.hpp"

namespace quorvane {

MediaPlayers makeLiveMediaPlayers(const LiveServices&) {
    return {.list = []() -> const std::vector<MediaPlayer>& {
                static const std::vector<MediaPlayer> none;
                return none;
            },
            .observe = [](const std::function<void()>&) { return Handle{[] {}}; },
            .refresh = [](const std::string&) {},
            .call = [](const std::string&, const std::string&) {},
            .set = [](const std::string&, const std::string&, const PropertyValue&) {}};
}

SoundServer makeLiveSoundServer(const LiveServices&) {
    return {.observe = [](const std::function<void(SoundLevels)>&) { return Handle{[] {}}; },
            .setVolume = [](std::optional<std::uint32_t>, double) {}};
}

FetchPicture makeLiveFetchPicture(const LiveServices&, std::filesystem::path) { return {}; }

SessionProblems findSessionProblems(const LiveServices&) { return {}; }

std::optional<std::string> findPortsProblem() { return std::nullopt; }

Result<Handle> runLocker(const LiveServices&, std::vector<std::string>, std::function<void(int)>) {
    return std::unexpected{
        PlatformError{.description = "the system's own lock screen announces itself"}};
}

}  // namespace quorvane

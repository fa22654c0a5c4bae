// The music players of the session as one player: the one that is chosen among them.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/ArtworkLoader.hpp"
#include "host/MprisCommand.hpp"
#include "host/MprisPlayback.hpp"
#include "host/PlayerChoice.hpp"
#include "host/PlayerSource.hpp"
#include "platform/Log.hpp"
#include "platform/MediaPlayers.hpp"

namespace quorvane {

// Main thread only. Nothing wakes the process while no player says anything and nobody asks.
class MprisPlayer : public PlayerSource {
public:
    struct Services {
        MediaPlayers players;
        RegularFiles files;
        Clock clock;
        MainThread mainThread;
        MakeSerialQueue makeSerialQueue;
        LogSink log;
    };

    // With a name, only players of that name are followed.
    MprisPlayer(Services services, std::optional<std::string> onlyNamed);

    PlayerSnapshot snapshot() const override;
    void perform(QuorvaneAction action) override;
    void setVolume(std::int64_t percent) override;
    void setRating(std::int64_t) override {}  // MPRIS has no words for it
    void freshen() override;

private:
    const MediaPlayer* current() const;
    void follow();
    void followCurrent();
    void choose(PlayerChoice choice);
    void tell(const std::string& busName, const MprisCommand& command);

    Services services_;
    std::optional<std::string> onlyNamed_;
    Logger log_;
    PlayerChoice choice_;
    std::optional<MprisPlayback> playback_;
    double volumeBeforeMute_ = 0.5;
    std::optional<Instant> freshenedAt_;
    ArtworkLoader artwork_;
    Handle observation_;  // last: nothing is heard before everything else is there
};

}  // namespace quorvane

// The music players of the session as one player: the one chosen among them.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/players/ArtworkLoader.hpp"
#include "host/players/MprisCommand.hpp"
#include "host/players/MprisPlayback.hpp"
#include "host/players/PlayerChoice.hpp"
#include "host/players/PlayerSource.hpp"
#include "host/settings/Settings.hpp"
#include "platform/Log.hpp"
#include "platform/MediaPlayers.hpp"
#include "platform/Observable.hpp"
#include "platform/SoundServer.hpp"

namespace quorvane {

// Main thread only. Does not wake the process while no player sends a change and no client asks.
// The sound server is connected only while the chosen player needs it.
class MprisPlayer : public PlayerSource {
public:
    struct Services {
        MediaPlayers players;
        SoundServer soundServer;
        RegularFiles files;
        FetchPicture fetchPicture;
        Clock clock;
        MainThread mainThread;
        MakeSerialQueue makeSerialQueue;
        LogSink log;
    };

    // With a name, only players of that name are followed. The settings outlive the player.
    MprisPlayer(Services services, Observable<Settings>& settings,
                std::optional<std::string> onlyNamed);

    PlayerSnapshot snapshot() const override;
    bool perform(QuorvaneAction action) override;
    bool setVolume(std::int64_t percent) override;
    bool setRating(std::int64_t) override { return false; }  // MPRIS cannot express it
    void refresh() override;
    PlayerList players() const override;

private:
    const MediaPlayer* current() const;
    void follow();
    void awaitIdleness();
    void followCurrent();
    void logCurrent() const;
    void choose(PlayerChoice choice);
    void followSound(const MediaPlayer& player, bool retries);
    void soundChanged(SoundLevels levels);
    bool carryOut(const std::string& busName, const std::optional<MprisCommand>& command);

    Services services_;
    Observable<Settings>& settings_;
    std::optional<std::string> onlyNamed_;
    Logger log_;
    PlayerChoice choice_;
    Timer idleTimer_;
    std::optional<MprisPlayback> playback_;
    SoundLevels sound_;  // empty while the server is not needed or not available
    double volumeBeforeMute_ = 0.5;
    std::optional<Instant> refreshedAt_;
    ArtworkLoader artwork_;
    Handle soundObservation_;
    // Last, because their callbacks use all members above.
    Handle observation_;
    Handle settingsObservation_;
};

}  // namespace quorvane

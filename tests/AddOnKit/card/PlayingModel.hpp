// A model that plays a song, its clock, and the card's environment around it.
#pragma once

#include "AddOnKit/card/PlayerEnvironment.hpp"
#include "AddOnKit/player/PlayerModel.hpp"
#include "tests/support/ManualClock.hpp"

namespace quorvane {

struct PlayingModel {
    ManualClock clock;
    Image::State decoded = Image::State::ready;  // of the next artwork
    PlayerModel model{clock.wallClock(),
                      [this](ByteView) -> ImageRef { return std::make_shared<Image>(decoded); }};
    QuorvanePlayerState state;

    PlayingModel() {
        XPCTrack track;
        track.title = "Reed";
        track.artist = "Marsh";
        track.duration = 200;
        track.artworkData = SharedBytes{copyOf(bytesOf("reeds"))};
        state.track = track;
        state.playerState = XPCPlayerState::playing;
        state.playerType = XPCPlayerType::appleMusic;
        state.volume = 50;
        state.playerPosition = 30.25;
        apply();
    }

    // The player says what `state` says, now.
    void apply() {
        state.timestamp = clock.wallClock()();
        model.apply(state);
    }

    void playWithArtwork(std::string_view bytes) {
        state.track->artworkData = SharedBytes{copyOf(bytesOf(bytes))};
        apply();
    }

    // Every letter is 10 points wide.
    static double measure(const std::string& text, const FontStyle&) {
        return 10.0 * static_cast<double>(text.size());
    }
};

inline constexpr char kLongTitle[] = "A title of fifty letters, which no card has room..";

}  // namespace quorvane

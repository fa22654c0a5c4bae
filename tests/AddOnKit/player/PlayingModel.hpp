// A model with the player whose states it applies.
#pragma once

#include <algorithm>

#include "AddOnKit/player/PlayerModel.hpp"
#include "drawing/Scene.hpp"
#include "tests/support/ManualClock.hpp"

namespace quorvane {

inline SharedBytes cover(std::string_view text) { return SharedBytes{copyOf(bytesOf(text))}; }

// An empty model, and a player that plays a song of 200 seconds.
struct EmptyModel {
    EmptyModel() {
        state.track.emplace();
        state.track->title = "Reed";
        state.track->artist = "Marsh";
        state.track->album = "Low";
        state.track->duration = 200;
        state.playerState = XPCPlayerState::playing;
        state.playerType = XPCPlayerType::appleMusic;
        state.volume = 50;
    }

    WallTime now() { return clock.wallClock()(); }
    // Applies the state as of now. Returns the summary of the change, "" without one.
    std::string apply() {
        state.timestamp = now();
        const auto change = model.apply(state);
        return change ? change->summary : "";
    }
    std::string apply(XPCPlayerState playerState) {
        state.playerState = playerState;
        return apply();
    }

    ManualClock clock;
    Image::State decoded = Image::State::ready;  // of the next artwork, unless it is "broken"
    int decodes = 0;
    PlayerModel model{clock.wallClock(), [this](ByteView bytes) -> ImageRef {
                          ++decodes;
                          if (textOf(bytes) == "broken") return nullptr;
                          return std::make_shared<Image>(decoded);
                      }};
    QuorvanePlayerState state;
};

struct PlayingModel : EmptyModel {
    PlayingModel() {
        state.playerPosition = 30.25;
        playWithArtwork("reeds");
    }
    void playWithArtwork(std::string_view bytes) {
        state.track->artworkData = cover(bytes);
        apply();
    }

    // Every letter is 10 points wide.
    static double measure(const std::string& text, const FontStyle&) {
        return 10.0 * static_cast<double>(text.size());
    }
};

template <typename Node>
std::vector<Node> all(const Scene& scene) {
    std::vector<Node> nodes;
    for (const SceneNode& node : scene.nodes)
        if (const auto* found = std::get_if<Node>(&node)) nodes.push_back(*found);
    return nodes;
}

inline const SceneControl* control(const Scene& scene, SceneControl::ID id) {
    const auto found = std::ranges::find(scene.controls, id, &SceneControl::id);
    return found == scene.controls.end() ? nullptr : &*found;
}

inline constexpr char kLongTitle[] = "A title of fifty letters, which no card has room..";

}  // namespace quorvane

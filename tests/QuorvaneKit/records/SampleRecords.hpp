// Records with every field set, and their serialised text.
#pragma once

#include <string>
#include <string_view>

#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "tests/support/ManualClock.hpp"

namespace quorvane {

inline QuorvanePlayerState sampleState() {
    QuorvanePlayerState state;
    state.track = XPCTrack{.title = "Línea \"A\"",
                           .artist = "Ø & 夜",
                           .album = "Back\\slash",
                           .albumArtist = "Several",
                           .duration = 241.5,
                           .artworkData = SharedBytes{copyOf(bytesOf("\xFF\xFE picture?"))},
                           .isLoved = true,
                           .isAdvertisement = false,
                           .isLiveStream = true,
                           .motionArtworkLoopID = "loop-7"};
    state.playerState = XPCPlayerState::playing;
    state.playerType = XPCPlayerType::spotify;
    state.capabilities = {true, false, true, false, true};
    state.volume = 64;
    state.isMuted = false;
    state.shuffleEnabled = true;
    state.repeatMode = XPCRepeatMode::off;
    state.rating = -3;
    state.isLoved = false;
    state.isDisliked = true;
    state.playerPosition = 12.25;
    state.timestamp = ManualClock::kStart;
    return state;
}

inline constexpr std::string_view kSampleText =
    R"({"track":{"title":"Línea \"A\"","artist":"Ø & 夜","album":"Back\\slash",)"
    R"("albumArtist":"Several","duration":241.5,"artworkData":"//4gcGljdHVyZT8=",)"
    R"("isLoved":true,"isAdvertisement":false,"isLiveStream":true,)"
    R"("motionArtworkLoopID":"loop-7"},"playerState":2,"playerType":"spotify",)"
    R"("capabilities":{"canLove":true,"canDislike":false,"canRate":true,)"
    R"("canAddToLibrary":false,"hasThreeStateRepeat":true},"volume":64,"isMuted":false,)"
    R"("shuffleEnabled":true,"repeatMode":3,"rating":-3,"isLoved":false,"isDisliked":true,)"
    R"("playerPosition":12.25,"timestamp":"2026-01-01T00:00:00Z"})";

// Only the required fields.
inline constexpr std::string_view kSmallestText =
    R"({"playerState":1,"capabilities":{"canLove":false,"canDislike":false,"canRate":false,)"
    R"("canAddToLibrary":false,"hasThreeStateRepeat":false},"volume":0,"isMuted":false,)"
    R"("shuffleEnabled":false,"playerPosition":0,"timestamp":"2026-01-01T00:00:00Z"})";

inline CodingResult<QuorvanePlayerState> decodeState(std::string_view text) {
    return XPCCodableHelpers::decode<QuorvanePlayerState>(bytesOf(text));
}

// Whether the state survives a round trip through its text.
inline bool comesBack(const QuorvanePlayerState& state) {
    const auto text = XPCCodableHelpers::encode(state);
    return text && decodeState(textOf(*text)) == state;
}

// The sample with one stretch of its text replaced.
inline std::string replaced(std::string_view text, std::string_view part, std::string_view by) {
    std::string result{text};
    const std::size_t place = result.find(part);
    if (place == std::string::npos) return "the sample has no such part";
    return result.replace(place, part.size(), by);
}

}  // namespace quorvane

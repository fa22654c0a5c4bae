// The card's user-visible texts, as keys of the string tables in localization/. The tables also
// hold each entry's comment. A key is also the English text.
#pragma once

namespace quorvane::PlayerStrings {

struct Entry {
    const char* key;
    const char* comment;  // for translators
};

inline constexpr Entry kNowPlaying{"Now Playing",
                                   "Accessibility label of the lock-screen card as a whole."};
inline constexpr Entry kPreviousTrack{
    "Previous Track", "Accessibility label of the lock-screen card's previous-track button."};
inline constexpr Entry kPlay{"Play", "Accessibility label of the lock-screen card's play button."};
inline constexpr Entry kPause{"Pause",
                              "Accessibility label of the lock-screen card's pause button."};
inline constexpr Entry kNextTrack{
    "Next Track", "Accessibility label of the lock-screen card's next-track button."};
inline constexpr Entry kLove{
    "Love", "Accessibility label of the lock-screen card's heart when the track isn't loved."};
inline constexpr Entry kRemoveLove{
    "Remove Love", "Accessibility label of the lock-screen card's heart when the track is loved."};
inline constexpr Entry kVolume{"Volume",
                               "Accessibility label of the lock-screen card's volume slider."};
inline constexpr Entry kArtwork{"Artwork",
                                "Accessibility label of the lock-screen card's cover picture."};
inline constexpr Entry kPosition{"Playback Position",
                                 "Accessibility label of the lock-screen card's progress bar."};

inline constexpr Entry kAll[] = {kNowPlaying, kPreviousTrack, kPlay,   kPause,   kNextTrack,
                                 kLove,       kRemoveLove,    kVolume, kArtwork, kPosition};

}  // namespace quorvane::PlayerStrings

// What the card shows: the one observable model that turns each player state into the few values
// that are drawn, and carries the user's edits until the main application confirms them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "drawing/Image.hpp"
#include "platform/Clock.hpp"
#include "platform/Observable.hpp"
#include "platform/ThreadCheck.hpp"

namespace quorvane {

// Main thread only, which every operation asserts: it must be the thread that made the model. Every
// observable is written only when its value changes.
class PlayerModel {
public:
    struct TrackText {
        std::string title;
        std::string artist;
        bool operator==(const TrackText&) const = default;
    };
    struct Change {
        std::string summary;
        std::optional<TrackText>
            newTrack;  // only when the update switched to another, present track
        bool operator==(const Change&) const = default;
    };

    PlayerModel(WallClock now, DecodeImage decodeImage);

    // Nullopt when nothing that is summarised has changed.
    std::optional<Change> apply(const QuorvanePlayerState& state);
    // Empties the card. Nullopt when it is empty already.
    std::optional<std::string> clear();
    // The extrapolated playback position in seconds.
    double position(WallTime date) const;

    void togglePlayPause();
    void toggleLove();
    void setVolume(std::int64_t value);  // clamped to 0...100
    void beginVolumeDrag();
    void endVolumeDrag();

    // A change that comes with no state: the artwork turned out to be undecodable.
    std::function<void(const Change&)> onLateChange;

    // Calls the listener after any of the observed fields has changed.
    std::vector<Handle> observe(const std::function<void()>& listener);

    Observable<bool> isVisible{false};
    Observable<std::string> title;
    Observable<std::string> artist;
    Observable<ImageRef> artwork;
    Observable<std::int64_t> artworkID{0};      // +1 each time the artwork's bytes change
    Observable<bool> isArtworkArriving{false};  // the artwork is still being decoded
    Observable<std::string> trackID;
    Observable<bool> isPlaying{false};
    Observable<bool> showsHeart{false};
    Observable<bool> isLoved{false};
    Observable<std::optional<double>>
        duration;  // seconds; nothing for live streams and unknown lengths
    Observable<bool> isLiveStream{false};
    Observable<std::int64_t> volume{50};  // percent
    Observable<bool> isDraggingVolume{false};

private:
    using Notes = std::vector<std::string>;  // what an update has changed, in a few words each

    // The steps of apply, in their order.
    TrackText switchTrack(const XPCTrack* track, const std::string& identity, Notes& notes);
    void applyArtwork(const XPCTrack* track, Notes& notes);
    std::string artworkNote() const;
    void setArtwork(ImageRef image);
    void artworkSettled();
    void applyHeart(const QuorvanePlayerState& state, Notes& notes);
    void applyLoved(const QuorvanePlayerState& state, Notes& notes);
    void applyVolume(std::int64_t reported, Notes& notes);
    void applyLength(const XPCTrack* track);
    void applyPosition(const QuorvanePlayerState& state, bool wentOnPlaying);

    double anchorPosition_ = 0;  // seconds, at anchorDate_
    WallTime anchorDate_ = kDistantPast;
    WallTime lovedGraceUntil_ = kDistantPast;
    WallTime volumeGraceUntil_ = kDistantPast;
    std::optional<SharedBytes> lastArtworkData_;
    Handle artworkObservation_;  // while the artwork is arriving
    WallClock now_;
    DecodeImage decodeImage_;
    ThreadCheck mainThread_;
};

}  // namespace quorvane

// Observable model of what the card shows. Turns each player state into the few values that are
// drawn, and keeps the user's edits until the main application confirms them.
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

// Main thread only; every operation asserts that it runs on the thread that made the model. Each
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

    // Returns nullopt when no field of the summary has changed.
    std::optional<Change> apply(const QuorvanePlayerState& state);
    // Empties the card. Returns nullopt when it is already empty.
    std::optional<std::string> clear();
    // The extrapolated playback position in seconds.
    double position(WallTime date) const;

    void togglePlayPause();
    void toggleLove();
    void setVolume(std::int64_t value);  // clamped to 0...100
    void beginVolumeDrag();
    void endVolumeDrag();

    // Reports a change that no state brought: the artwork could not be decoded.
    std::function<void(const Change&)> onLateChange;

    // Calls the listener after any of the observed fields has changed.
    std::vector<Handle> observe(const std::function<void()>& listener);

    Observable<bool> isVisible{false};
    Observable<std::string> title;
    Observable<std::string> artist;
    Observable<ImageRef> artwork;
    Observable<bool> isArtworkArriving{false};  // the artwork is still being decoded
    Observable<std::string> trackID;
    Observable<bool> isPlaying{false};
    Observable<bool> showsHeart{false};
    Observable<bool> isLoved{false};
    Observable<std::optional<double>>
        duration;  // seconds; nullopt for live streams and unknown lengths
    Observable<bool> isLiveStream{false};
    Observable<std::int64_t> volume{50};  // percent
    Observable<bool> isDraggingVolume{false};

private:
    using Notes = std::vector<std::string>;  // the changes of an update, a few words each

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
    std::optional<SharedBytes> artworkData_;
    Handle artworkObservation_;  // while the artwork is arriving
    WallClock now_;
    DecodeImage decodeImage_;
    ThreadCheck mainThread_;
};

}  // namespace quorvane

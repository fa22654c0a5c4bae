#include "AddOnKit/player/PlayerModel.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace quorvane {
namespace {

constexpr Duration kLovedGrace = std::chrono::milliseconds{1500};
constexpr Duration kVolumeGrace = std::chrono::seconds{1};
// A report within this distance of the card's position counts as the same playback, because
// following it would only make the progress jitter.
constexpr double kPositionTolerance = 1.5;  // seconds

// Two states with equal identities show the same track. The separator occurs in no title.
std::string identityOf(const XPCTrack* track) {
    constexpr char kUnitSeparator = '\x1f';
    if (track == nullptr) return {};
    return track->title + kUnitSeparator + track->artist + kUnitSeparator +
           track->album.value_or("");
}

std::string name(XPCPlayerState state) {
    switch (state) {
        case XPCPlayerState::unknown: return "unknown";
        case XPCPlayerState::stopped: return "stopped";
        case XPCPlayerState::playing: return "playing";
        case XPCPlayerState::paused: return "paused";
    }
    std::unreachable();
}

std::string name(std::optional<XPCPlayerType> type) { return type ? rawValue(*type) : "unknown"; }

std::int64_t percent(std::int64_t value) { return std::clamp<std::int64_t>(value, 0, 100); }

std::string joined(const std::vector<std::string>& notes) {
    std::string text;
    for (const std::string& note : notes) text += (text.empty() ? "" : ", ") + note;
    return text;
}

}  // namespace

PlayerModel::PlayerModel(WallClock now, DecodeImage decodeImage)
    : now_(std::move(now)), decodeImage_(std::move(decodeImage)) {}

std::optional<PlayerModel::Change> PlayerModel::apply(const QuorvanePlayerState& state) {
    mainThread_.require();
    const XPCTrack* const track = state.track ? &*state.track : nullptr;
    const bool plays = state.playerState == XPCPlayerState::playing;
    const bool shows = track != nullptr && (plays || state.playerState == XPCPlayerState::paused);
    const bool wentOnPlaying = plays && isPlaying.get();
    Notes notes;
    std::optional<TrackText> newTrack;

    const std::string identity = identityOf(track);
    const bool isSameTrack = identity == trackID.get();
    if (!isSameTrack) {
        const TrackText text = switchTrack(track, identity, notes);
        if (track != nullptr) newTrack = text;
    }
    if (plays != isPlaying.get())
        notes.push_back(plays ? "playing" : "not playing (" + name(state.playerState) + ")");
    if (shows != isVisible.get()) notes.emplace_back(shows ? "card visible" : "card hidden");
    applyArtwork(track, notes);
    applyHeart(state, notes);
    applyLoved(state, notes);
    applyVolume(state.volume, notes);
    applyLength(track);
    applyPosition(state, isSameTrack && wentOnPlaying);
    // Last, because their observers must find all other fields up to date.
    isPlaying.set(plays);
    isVisible.set(shows);

    if (notes.empty()) return std::nullopt;
    return Change{.summary = joined(notes), .newTrack = std::move(newTrack)};
}

PlayerModel::TrackText PlayerModel::switchTrack(const XPCTrack* track, const std::string& identity,
                                                Notes& notes) {
    notes.emplace_back(track == nullptr ? "no track" : "track changed");
    TrackText text;
    if (track != nullptr) text = {.title = track->title, .artist = track->artist};
    trackID.set(identity);
    title.set(text.title);
    artist.set(text.artist);
    return text;
}

void PlayerModel::applyArtwork(const XPCTrack* track, Notes& notes) {
    static const std::optional<SharedBytes> kNone;
    const std::optional<SharedBytes>& data = track == nullptr ? kNone : track->artworkData;
    if (data == artworkData_) return;
    artworkData_ = data;
    setArtwork(data ? decodeImage_(data->view()) : nullptr);
    notes.push_back(artworkNote());
}

std::string PlayerModel::artworkNote() const {
    if (!artworkData_) return "artwork none";
    return "artwork " + std::to_string(artworkData_->size()) + " B" +
           (artwork.get() == nullptr ? " (undecodable)" : "");
}

void PlayerModel::setArtwork(ImageRef image) {
    const bool isArriving = image && image->state().get() == Image::State::arriving;
    artworkObservation_ =
        isArriving ? image->state().subscribe([this] { artworkSettled(); }) : Handle{};
    artwork.set(std::move(image));
    isArtworkArriving.set(isArriving);
}

void PlayerModel::artworkSettled() {
    const bool isDecoded = artwork.get()->state().get() == Image::State::ready;
    setArtwork(isDecoded ? artwork.get() : nullptr);
    if (!isDecoded && onLateChange)
        onLateChange({.summary = artworkNote(), .newTrack = std::nullopt});
}

void PlayerModel::applyHeart(const QuorvanePlayerState& state, Notes& notes) {
    std::string reason;  // why it is hidden
    if (!state.track)
        reason = "no track";
    else if (state.track->isAdvertisement)
        reason = "advertisement";
    else if (state.playerType != XPCPlayerType::appleMusic)
        reason = "player " + name(state.playerType);
    const bool shows = reason.empty();
    if (shows == showsHeart.get()) return;
    notes.push_back(shows ? "heart shown" : "heart hidden (" + reason + ")");
    showsHeart.set(shows);
}

void PlayerModel::applyLoved(const QuorvanePlayerState& state, Notes& notes) {
    if (now_() < lovedGraceUntil_) return;
    const auto ofTrack = state.track ? state.track->isLoved : std::nullopt;
    const bool loved = state.isLoved.value_or(ofTrack.value_or(false));
    if (loved == isLoved.get()) return;
    notes.emplace_back(loved ? "loved" : "not loved");
    isLoved.set(loved);
}

void PlayerModel::applyVolume(std::int64_t reported, Notes& notes) {
    if (isDraggingVolume.get() || now_() < volumeGraceUntil_) return;
    const std::int64_t value = percent(reported);
    if (value == volume.get()) return;
    notes.push_back("volume " + std::to_string(value));
    volume.set(value);
}

void PlayerModel::applyLength(const XPCTrack* track) {
    const bool isLive = track != nullptr && track->isLiveStream;
    isLiveStream.set(isLive);
    const bool hasLength = track != nullptr && !isLive && track->duration && *track->duration > 0;
    duration.set(hasLength ? track->duration : std::nullopt);
}

void PlayerModel::applyPosition(const QuorvanePlayerState& state, bool wentOnPlaying) {
    const double drift = std::abs(state.playerPosition - position(state.timestamp));
    if (wentOnPlaying && drift < kPositionTolerance) return;
    anchorPosition_ = state.playerPosition;
    anchorDate_ = state.timestamp;
}

std::optional<std::string> PlayerModel::clear() {
    mainThread_.require();
    const bool hadSomething = isVisible.get() || !trackID.get().empty();
    isVisible.set(false);
    isPlaying.set(false);
    title.set("");
    artist.set("");
    trackID.set("");
    showsHeart.set(false);
    isLoved.set(false);
    duration.set(std::nullopt);
    isLiveStream.set(false);
    artworkData_.reset();
    setArtwork(nullptr);
    anchorPosition_ = 0;
    if (!hadSomething) return std::nullopt;
    return "cleared (Quorvane unreachable or quit), card hidden";
}

double PlayerModel::position(WallTime date) const {
    mainThread_.require();
    const double elapsed = isPlaying.get() ? std::max(secondsBetween(anchorDate_, date), 0.0) : 0;
    const double reached = anchorPosition_ + elapsed;
    return std::max(std::min(reached, duration.get().value_or(reached)), 0.0);
}

void PlayerModel::togglePlayPause() {
    mainThread_.require();
    const WallTime date = now_();
    anchorPosition_ = position(date);
    anchorDate_ = date;
    isPlaying.set(!isPlaying.get());
}

void PlayerModel::toggleLove() {
    mainThread_.require();
    lovedGraceUntil_ = now_() + kLovedGrace;
    isLoved.set(!isLoved.get());
}

void PlayerModel::setVolume(std::int64_t value) {
    mainThread_.require();
    volumeGraceUntil_ = now_() + kVolumeGrace;
    volume.set(percent(value));
}

void PlayerModel::beginVolumeDrag() {
    mainThread_.require();
    isDraggingVolume.set(true);
}

void PlayerModel::endVolumeDrag() {
    mainThread_.require();
    volumeGraceUntil_ = now_() + kVolumeGrace;
    isDraggingVolume.set(false);
}

std::vector<Handle> PlayerModel::observe(const std::function<void()>& listener) {
    mainThread_.require();
    std::vector<Handle> handles;
    const auto add = [&](auto&... fields) { (handles.push_back(fields.subscribe(listener)), ...); };
    add(isVisible, title, artist, artwork, isArtworkArriving, trackID, isPlaying, showsHeart,
        isLoved, duration, isLiveStream, volume, isDraggingVolume);
    return handles;
}

}  // namespace quorvane

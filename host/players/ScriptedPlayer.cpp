#include "host/players/ScriptedPlayer.hpp"

#include <algorithm>
#include <numeric>

#include "platform/Seconds.hpp"

namespace quorvane {

namespace {

constexpr std::int64_t kVolumeStepPercent = 5;
constexpr std::int64_t kRatingStep = 20;  // one star of five
constexpr double kRestartAfterSeconds = 3;

std::int64_t percentOf(std::int64_t value) { return std::clamp<std::int64_t>(value, 0, 100); }

}  // namespace

ScriptedPlayer::ScriptedPlayer(Script script, Clock clock)
    : script_(std::move(script)), clock_(std::move(clock)), order_(script_.tracks.size()) {
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    const bool shuffles = std::exchange(script_.shuffleEnabled, false);
    place_ = script_.startTrack;
    if (shuffles) toggleShuffle();
    begin(place_, script_.startPosition,
          script_.autoplay ? XPCPlayerState::playing : XPCPlayerState::paused);
}

std::optional<double> ScriptedPlayer::duration() const {
    const XPCTrack& track = current().track;
    return track.isLiveStream ? std::nullopt : track.duration;
}

PlayerSnapshot ScriptedPlayer::snapshot() const {
    QuorvanePlayerState state;
    state.track = current().track;
    state.playerState = state_;
    state.playerType = script_.playerType;
    state.capabilities = script_.capabilities;
    state.volume = isMuted_ ? 0 : script_.volume;
    state.isMuted = isMuted_;
    state.shuffleEnabled = script_.shuffleEnabled;
    state.repeatMode = script_.repeatMode;
    state.rating = current().rating;
    state.isLoved = current().track.isLoved;
    state.isDisliked = current().isDisliked;
    return {std::move(state), anchor_};
}

bool ScriptedPlayer::perform(QuorvaneAction action) {
    ScriptedTrack& track = current();
    switch (action) {
        case QuorvaneAction::playPause: return playPause(), true;
        case QuorvaneAction::nextTrack: return advance(false), true;
        case QuorvaneAction::previousTrack: return goBack(), true;
        case QuorvaneAction::increaseVolume: return setVolume(script_.volume + kVolumeStepPercent);
        case QuorvaneAction::decreaseVolume: return setVolume(script_.volume - kVolumeStepPercent);
        case QuorvaneAction::toggleMute: return toggleMute(), true;
        case QuorvaneAction::toggleLove:
            return script_.capabilities.canLove && toggle(track.track.isLoved, track.isDisliked);
        case QuorvaneAction::toggleDislike:
            return script_.capabilities.canDislike && toggle(track.isDisliked, track.track.isLoved);
        case QuorvaneAction::increaseRating:
            return setRating(track.rating.value_or(0) + kRatingStep);
        case QuorvaneAction::decreaseRating:
            return setRating(track.rating.value_or(0) - kRatingStep);
        case QuorvaneAction::removeRating: return setRating(0);
        case QuorvaneAction::toggleShuffle: return toggleShuffle(), true;
        case QuorvaneAction::toggleRepeat: return toggleRepeat(), true;
        case QuorvaneAction::activatePlayer:              // the player has no window
        case QuorvaneAction::switchPlayer: return false;  // there is only one player
    }
    return false;
}

void ScriptedPlayer::playPause() {
    const bool plays = state_ == XPCPlayerState::playing;
    anchor_ = anchor_.movedTo(clock_.now());
    setState(plays ? XPCPlayerState::paused : XPCPlayerState::playing);
}

void ScriptedPlayer::advance(bool byItself) {
    if (byItself && script_.repeatMode == XPCRepeatMode::one) return begin(place_, 0, state_);
    if (place_ + 1 < order_.size()) return begin(place_ + 1, 0, state_);
    if (script_.repeatMode != XPCRepeatMode::off) return begin(0, 0, state_);
    begin(0, 0, XPCPlayerState::stopped);
}

void ScriptedPlayer::goBack() {
    if (place_ == 0 || anchor_.secondsAt(clock_.now()) > kRestartAfterSeconds)
        return begin(place_, 0, state_);
    begin(place_ - 1, 0, state_);
}

void ScriptedPlayer::begin(std::size_t place, double seconds, XPCPlayerState state) {
    place_ = place;
    const auto length = duration();
    const double start = std::max(0.0, length ? std::min(seconds, *length) : seconds);
    anchor_ = {.seconds = start, .at = clock_.now(), .duration = length};
    setState(state);
}

void ScriptedPlayer::setState(XPCPlayerState state) {
    state_ = state;
    anchor_.isPlaying = state == XPCPlayerState::playing;
    armEndOfTrack();
    changed();
}

void ScriptedPlayer::armEndOfTrack() {
    endOfTrack_.reset();
    if (!anchor_.isPlaying || !anchor_.duration) return;
    endOfTrack_ =
        clock_.after(durationOf(*anchor_.duration - anchor_.seconds), [this] { advance(true); });
}

bool ScriptedPlayer::setVolume(std::int64_t percent) {
    script_.volume = percentOf(percent);
    isMuted_ = false;
    changed();
    return true;
}

void ScriptedPlayer::toggleMute() {
    isMuted_ = !isMuted_;
    changed();
}

bool ScriptedPlayer::toggle(std::optional<bool>& mark, std::optional<bool>& opposite) {
    mark = !mark.value_or(false);
    if (*mark && opposite) opposite = false;
    changed();
    return true;
}

bool ScriptedPlayer::setRating(std::int64_t percent) {
    if (!script_.capabilities.canRate) return false;
    current().rating = percentOf(percent);
    changed();
    return true;
}

void ScriptedPlayer::toggleShuffle() {
    script_.shuffleEnabled = !script_.shuffleEnabled;
    const std::size_t playing = order_[place_];
    std::ranges::sort(order_);
    place_ = playing;
    if (script_.shuffleEnabled) {
        // The current track stays; the others follow it in random order.
        std::swap(order_[0], order_[playing]);
        std::shuffle(order_.begin() + 1, order_.end(), random_);
        place_ = 0;
    }
    changed();
}

void ScriptedPlayer::toggleRepeat() {
    const bool hasThreeStates = script_.capabilities.hasThreeStateRepeat;
    switch (script_.repeatMode) {
        case XPCRepeatMode::all:
            script_.repeatMode = hasThreeStates ? XPCRepeatMode::one : XPCRepeatMode::off;
            break;
        case XPCRepeatMode::one: script_.repeatMode = XPCRepeatMode::off; break;
        case XPCRepeatMode::off: script_.repeatMode = XPCRepeatMode::all; break;
    }
    changed();
}

void ScriptedPlayer::changed() {
    if (onChanged) onChanged();
}

}  // namespace quorvane

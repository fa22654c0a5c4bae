#include "QuorvaneKit/records/QuorvaneAction.hpp"

#include <algorithm>

namespace quorvane {
namespace {

struct Row {
    QuorvaneAction action;
    std::string_view name;
};

constexpr Row kRows[] = {
    {QuorvaneAction::playPause, "playPause"},
    {QuorvaneAction::nextTrack, "nextTrack"},
    {QuorvaneAction::previousTrack, "previousTrack"},
    {QuorvaneAction::increaseVolume, "increaseVolume"},
    {QuorvaneAction::decreaseVolume, "decreaseVolume"},
    {QuorvaneAction::toggleMute, "toggleMute"},
    {QuorvaneAction::toggleLove, "toggleLove"},
    {QuorvaneAction::toggleDislike, "toggleDislike"},
    {QuorvaneAction::increaseRating, "increaseRating"},
    {QuorvaneAction::decreaseRating, "decreaseRating"},
    {QuorvaneAction::removeRating, "removeRating"},
    {QuorvaneAction::toggleShuffle, "toggleShuffle"},
    {QuorvaneAction::toggleRepeat, "toggleRepeat"},
    {QuorvaneAction::activatePlayer, "activatePlayer"},
    {QuorvaneAction::switchPlayer, "switchPlayer"},
};

const Row* rowOf(QuorvaneAction action) {
    const auto* const row = std::ranges::find(kRows, action, &Row::action);
    return row == std::end(kRows) ? nullptr : row;
}

}  // namespace

std::optional<QuorvaneAction> quorvaneAction(std::int64_t rawValue) {
    const auto action = static_cast<QuorvaneAction>(rawValue);
    if (rowOf(action) == nullptr) return std::nullopt;
    return action;
}

std::string_view actionName(QuorvaneAction action) {
    const Row* const row = rowOf(action);
    return row == nullptr ? std::string_view{} : row->name;
}

}  // namespace quorvane

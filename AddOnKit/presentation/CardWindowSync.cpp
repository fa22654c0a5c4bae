#include "AddOnKit/presentation/CardWindowSync.hpp"

namespace quorvane {
namespace {

using Appearance = CardWindowSync::CardAppearance;
using Step = CardWindowSync::Step;
using Standing = CardWindowSync::Standing;

// Closes all windows and ends the activity.
std::vector<Step> clearAway(const Standing& standing) {
    std::vector<Step> plan;
    if (standing.windowCount >= 1) plan.emplace_back(CardWindowSync::CloseAll{});
    if (standing.isActivityActive) plan.emplace_back(CardWindowSync::EndActivity{});
    return plan;
}

// From no window to one for each screen. Without a screen the activity is not needed.
void appendBuild(std::vector<Step>& plan, Appearance appearance, const Standing& standing) {
    if (standing.screenCount >= 1) {
        plan.emplace_back(CardWindowSync::Build{appearance});
        if (!standing.isActivityActive) plan.emplace_back(CardWindowSync::BeginActivity{});
    } else if (standing.isActivityActive) {
        plan.emplace_back(CardWindowSync::EndActivity{});
    }
}

}  // namespace

std::vector<Step> CardWindowSync::steps(const PresentationState& from, const PresentationState& to,
                                        const Standing& standing) {
    if (!to.windowsWanted()) return clearAway(standing);
    std::vector<Step> plan;
    if (standing.windowCount == 0) {
        appendBuild(plan, to.hasMusic ? Appearance::entrance : Appearance::hidden, standing);
        return plan;
    }
    // If the windows were up although not wanted, their card was invisible.
    const bool wasVisible = from.windowsWanted() && from.hasMusic;
    if (wasVisible != to.hasMusic) plan.emplace_back(SetCardVisible{to.hasMusic});
    return plan;
}

std::vector<Step> CardWindowSync::rebuildSteps(const PresentationState& state,
                                               const Standing& standing) {
    if (!state.windowsWanted()) return clearAway(standing);
    std::vector<Step> plan;
    if (standing.windowCount >= 1) plan.emplace_back(CloseAll{});
    // A card that was already visible does not repeat its entrance.
    const Appearance shown =
        standing.windowCount == 0 ? Appearance::entrance : Appearance::immediate;
    appendBuild(plan, state.hasMusic ? shown : Appearance::hidden, standing);
    return plan;
}

}  // namespace quorvane

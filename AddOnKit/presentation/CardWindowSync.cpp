#include "AddOnKit/presentation/CardWindowSync.hpp"

namespace quorvane {
namespace {

using Appearance = CardWindowSync::CardAppearance;
using Step = CardWindowSync::Step;
using Existing = CardWindowSync::Existing;

// Closes all windows and ends the activity.
std::vector<Step> clearAway(const Existing& existing) {
    std::vector<Step> plan;
    if (existing.windowCount >= 1) plan.emplace_back(CardWindowSync::CloseAll{});
    if (existing.isActivityActive) plan.emplace_back(CardWindowSync::EndActivity{});
    return plan;
}

// From no window to one for each screen. Without a screen the activity is not needed.
void appendBuild(std::vector<Step>& plan, Appearance appearance, const Existing& existing) {
    if (existing.screenCount >= 1) {
        plan.emplace_back(CardWindowSync::Build{appearance});
        if (!existing.isActivityActive) plan.emplace_back(CardWindowSync::BeginActivity{});
    } else if (existing.isActivityActive) {
        plan.emplace_back(CardWindowSync::EndActivity{});
    }
}

}  // namespace

std::vector<Step> CardWindowSync::steps(const PresentationState& from, const PresentationState& to,
                                        const Existing& existing) {
    if (!to.windowsWanted()) return clearAway(existing);
    std::vector<Step> plan;
    if (existing.windowCount == 0) {
        appendBuild(plan, to.hasMusic ? Appearance::entrance : Appearance::hidden, existing);
        return plan;
    }
    // If the windows were up although not wanted, their card was invisible.
    const bool wasVisible = from.windowsWanted() && from.hasMusic;
    if (wasVisible != to.hasMusic) plan.emplace_back(SetCardVisible{to.hasMusic});
    return plan;
}

std::vector<Step> CardWindowSync::rebuildSteps(const PresentationState& state,
                                               const Existing& existing) {
    if (!state.windowsWanted()) return clearAway(existing);
    std::vector<Step> plan;
    if (existing.windowCount >= 1) plan.emplace_back(CloseAll{});
    // A card that was already visible does not repeat its entrance.
    const Appearance shown =
        existing.windowCount == 0 ? Appearance::entrance : Appearance::immediate;
    appendBuild(plan, state.hasMusic ? shown : Appearance::hidden, existing);
    return plan;
}

}  // namespace quorvane

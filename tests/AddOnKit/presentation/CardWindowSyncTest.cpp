#include "AddOnKit/presentation/CardWindowSync.hpp"

#include <gtest/gtest.h>

#include "tests/AddOnKit/presentation/PlannedWindows.hpp"

namespace quorvane {
namespace {

using Sync = CardWindowSync;

// The plan in words: "close build-entrance begin".
std::string text(const std::vector<Sync::Step>& plan) {
    struct Words {
        std::string operator()(Sync::Build step) const {
            const char* appearances[] = {"build-hidden", "build-entrance", "build-immediate"};
            return appearances[static_cast<int>(step.appearance)];
        }
        std::string operator()(Sync::SetCardVisible step) const {
            return step.isVisible ? "in" : "out";
        }
        std::string operator()(Sync::CloseAll) const { return "close"; }
        std::string operator()(Sync::BeginActivity) const { return "begin"; }
        std::string operator()(Sync::EndActivity) const { return "end"; }
    };
    std::string words;
    for (const auto& step : plan) words += (words.empty() ? "" : " ") + std::visit(Words{}, step);
    return words;
}

PresentationState locked(bool hasDelayElapsed, bool hasMusic) {
    return {.isLocked = true,
            .isLockUIShown = true,
            .delayElapsed = hasDelayElapsed,
            .allowsPlayer = true,
            .hasMusic = hasMusic};
}

TEST(CardWindowSync, PlansInTheStatedOrder) {
    const PresentationState waiting = locked(false, true);
    const PresentationState silent = locked(true, false);
    const PresentationState shown = locked(true, true);
    const struct {
        PresentationState from, to;
        Sync::Standing standing;  // windows, activity, screens
        const char* plan;
        const char* rebuild;  // at `to`, after a change of screens
    } rows[] = {
        {waiting, shown, {0, false, 2}, "build-entrance begin", "build-entrance begin"},
        {waiting, shown, {0, true, 1}, "build-entrance", "build-entrance"},
        {waiting, silent, {0, false, 1}, "build-hidden begin", "build-hidden begin"},
        {silent, shown, {2, true, 2}, "in", "close build-immediate"},
        {shown, silent, {2, true, 2}, "out", "close build-hidden"},
        {shown, shown, {1, true, 1}, "", "close build-immediate"},
        {waiting, shown, {1, true, 1}, "in", "close build-immediate"},
        {waiting, silent, {1, true, 1}, "", "close build-hidden"},
        {shown, shown, {1, false, 1}, "", "close build-immediate begin"},
        {shown, waiting, {2, true, 2}, "close end", "close end"},
        {shown, waiting, {1, false, 1}, "close", "close"},
        {shown, waiting, {0, true, 0}, "end", "end"},
        {shown, shown, {1, true, 0}, "", "close end"},
        {waiting, shown, {0, true, 0}, "end", "end"},
        {waiting, shown, {0, false, 0}, "", ""},
        {shown, waiting, {0, false, 1}, "", ""},
    };
    for (const auto& row : rows) {
        const auto place = &row - rows;
        EXPECT_EQ(text(Sync::steps(row.from, row.to, row.standing)), row.plan) << "row " << place;
        EXPECT_EQ(text(Sync::rebuildSteps(row.to, row.standing)), row.rebuild) << "row " << place;
    }
}

std::vector<PresentationState> everyState() {
    std::vector<PresentationState> states;
    for (unsigned bits = 0; bits < 32; ++bits)
        states.push_back({.isLocked = (bits & 1) != 0,
                          .isLockUIShown = (bits & 2) != 0,
                          .delayElapsed = (bits & 4) != 0,
                          .allowsPlayer = (bits & 8) != 0,
                          .hasMusic = (bits & 16) != 0});
    return states;
}

// What must be true of the windows after any plan for `state`, given how many screens count.
void expectAsWanted(const PlannedWindows& windows, const PresentationState& state,
                    std::size_t windowCount) {
    EXPECT_EQ(windows.windowCount, state.windowsWanted() ? windowCount : 0);
    EXPECT_EQ(windows.isCardVisible, state.cardShown() && windows.windowCount > 0);
    EXPECT_EQ(windows.isActivityActive, windows.windowCount > 0);
}

TEST(CardWindowSync, AnyPlanFromAnywhereEndsAsTheStateWants) {
    for (const PresentationState& from : everyState())
        for (const PresentationState& to : everyState())
            for (std::size_t windowCount = 0; windowCount <= 2; ++windowCount)
                for (std::size_t screenCount = 0; screenCount <= 2; ++screenCount) {
                    // As any earlier plan has left it; a build may have failed on every screen.
                    const PlannedWindows before{
                        .windowCount = windowCount,
                        .isCardVisible = windowCount > 0 && from.cardShown(),
                        .isActivityActive = windowCount > 0,
                        .screenCount = screenCount};
                    PlannedWindows changed = before;
                    changed.carryOut(Sync::steps(from, to, before.standing()));
                    expectAsWanted(changed, to, windowCount > 0 ? windowCount : screenCount);
                    PlannedWindows rebuilt = before;
                    rebuilt.carryOut(Sync::rebuildSteps(to, before.standing()));
                    expectAsWanted(rebuilt, to, screenCount);
                    if (testing::Test::HasFailure()) return;
                }
}

}  // namespace
}  // namespace quorvane

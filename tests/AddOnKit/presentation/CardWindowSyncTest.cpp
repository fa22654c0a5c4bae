#include "AddOnKit/presentation/CardWindowSync.hpp"

#include <gtest/gtest.h>

namespace quorvane {
namespace {

using Sync = CardWindowSync;

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

// The plan as text: "close build-entrance begin".
std::string text(const std::vector<Sync::Step>& plan) {
    std::string words;
    for (const auto& step : plan) words += (words.empty() ? "" : " ") + std::visit(Words{}, step);
    return words;
}

TEST(CardWindowSync, PlansItsStepsInOrder) {
    constexpr PresentationState waiting{true, true, false, true, true};
    constexpr PresentationState silent{true, true, true, true, false};
    constexpr PresentationState shown{true, true, true, true, true};
    const struct {
        PresentationState from, to;
        Sync::Existing existing;  // windows, activity, screens
        const char* plan;
        const char* rebuild;  // at `to`, after a change of screens
    } rows[] = {
        {waiting, shown, {0, false, 2}, "build-entrance begin", "build-entrance begin"},
        {waiting, silent, {0, false, 1}, "build-hidden begin", "build-hidden begin"},
        {silent, shown, {2, true, 2}, "in", "close build-immediate"},
        {shown, silent, {2, true, 2}, "out", "close build-hidden"},
        {shown, shown, {1, true, 1}, "", "close build-immediate"},
        {waiting, shown, {1, true, 1}, "in", "close build-immediate"},
        {waiting, silent, {1, true, 1}, "", "close build-hidden"},
        {shown, waiting, {2, true, 2}, "close end", "close end"},
        {shown, waiting, {0, true, 0}, "end", "end"},
        {shown, shown, {1, true, 0}, "", "close end"},
        {waiting, shown, {0, true, 0}, "end", "end"},
        {waiting, shown, {0, false, 0}, "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        EXPECT_EQ(text(Sync::steps(row.from, row.to, row.existing)), row.plan);
        EXPECT_EQ(text(Sync::rebuildSteps(row.to, row.existing)), row.rebuild);
    }
}

}  // namespace
}  // namespace quorvane

// What a window controller keeps, without windows: carries out the steps of a plan and complains
// about those that make no sense where they stand.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "AddOnKit/presentation/CardWindowSync.hpp"

namespace quorvane {

struct PlannedWindows {
    std::size_t windowCount = 0;
    bool isCardVisible = false;
    bool isActivityActive = false;
    std::size_t screenCount = 1;

    CardWindowSync::Standing standing() const {
        return {.windowCount = windowCount,
                .isActivityActive = isActivityActive,
                .screenCount = screenCount};
    }

    void carryOut(const std::vector<CardWindowSync::Step>& plan) {
        for (const auto& step : plan) std::visit([this](const auto& s) { carryOut(s); }, step);
    }

private:
    void carryOut(const CardWindowSync::Build& step) {
        EXPECT_EQ(windowCount, 0u) << "builds on top of standing windows";
        EXPECT_GT(screenCount, 0u) << "builds without a screen";
        windowCount = screenCount;
        isCardVisible = step.appearance != CardWindowSync::CardAppearance::hidden;
    }
    void carryOut(const CardWindowSync::SetCardVisible& step) {
        EXPECT_GT(windowCount, 0u) << "fades without a window";
        EXPECT_NE(isCardVisible, step.isVisible) << "fades to what is already seen";
        isCardVisible = step.isVisible;
    }
    void carryOut(const CardWindowSync::CloseAll&) {
        EXPECT_GT(windowCount, 0u) << "closes nothing";
        windowCount = 0;
        isCardVisible = false;
    }
    void carryOut(const CardWindowSync::BeginActivity&) {
        EXPECT_FALSE(isActivityActive);
        EXPECT_GT(windowCount, 0u) << "stays responsive for no window";
        isActivityActive = true;
    }
    void carryOut(const CardWindowSync::EndActivity&) {
        EXPECT_TRUE(isActivityActive);
        isActivityActive = false;
    }
};

}  // namespace quorvane

// Plan of ordered window steps for a presentation decision. Pure functions of plain values; the
// window controller carries the steps out.
#pragma once

#include <cstddef>
#include <variant>
#include <vector>

#include "AddOnKit/presentation/PresentationState.hpp"

namespace quorvane {

struct CardWindowSync {
    // How the card looks in newly built windows.
    enum class CardAppearance {
        hidden,    // the windows are up, the card is invisible
        entrance,  // the card enters with its animation
        immediate  // the card is visible at once
    };

    // One window for each screen.
    struct Build {
        CardAppearance appearance;
    };
    // Fades the card in or out in all windows.
    struct SetCardVisible {
        bool isVisible;
    };
    struct CloseAll {};
    // The process activity keeps the add-on responsive while windows are up.
    struct BeginActivity {};
    struct EndActivity {};
    using Step = std::variant<Build, SetCardVisible, CloseAll, BeginActivity, EndActivity>;

    // The present windows, activity and screens.
    struct Existing {
        std::size_t windowCount = 0;
        bool isActivityActive = false;
        std::size_t screenCount = 0;
    };

    // The plan for a change of state.
    static std::vector<Step> steps(const PresentationState& from, const PresentationState& to,
                                   const Existing& existing);
    // The plan after screens or keep-clear areas changed.
    static std::vector<Step> rebuildSteps(const PresentationState& state, const Existing& existing);
};

}  // namespace quorvane

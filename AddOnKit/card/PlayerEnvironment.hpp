// Inputs of the card's views other than the model, as values.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "drawing/Scene.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

// Returns the text for a key in the user's language.
using Localized = std::function<std::string(const std::string& key)>;

struct PlayerEnvironment {
    Localized localized;
    MeasureText measureText;
    bool isRightToLeft = false;
    bool reduceMotion = false;   // the system's setting
    double widestMovedText = 0;  // by the stage, in pixels
    double scale = 1;            // pixels per point on this screen

    // For still renderings: the view at this date, the marquees at this time of their cycle.
    std::optional<WallTime> playerFrozenDate{};
    std::optional<double> marqueeFrozenTime{};  // seconds
    std::optional<bool> marqueeReduceMotion{};  // replaces the system's setting
};

}  // namespace quorvane

// The content of a glass card.
#pragma once

#include <memory>

#include "drawing/CardWindows.hpp"

namespace quorvane {

// Main thread only. One for each card window; its stage outlives it.
class CardContent {
public:
    virtual ~CardContent() = default;
    // Draws into this stage and listens to its events from now on.
    virtual void attach(std::shared_ptr<CardStage> stage) = 0;
    // While not shown it draws nothing and keeps no timer.
    virtual void setShown(bool shown) = 0;
    // Keeps the picture as it is while the card fades out, until the next setShown. Calls nothing.
    virtual void freeze() = 0;
};

}  // namespace quorvane

// The content of a glass card.
#pragma once

#include <memory>

#include "drawing/CardWindows.hpp"

namespace quorvane {

// Main thread only. Each card window has its own content. The stage outlives the content.
class CardContent {
public:
    virtual ~CardContent() = default;
    // Called once, before setShown. Draws into this stage and listens to its events.
    virtual void attach(std::shared_ptr<CardStage> stage) = 0;
    // While hidden, the content draws nothing and keeps no timer.
    virtual void setShown(bool shown) = 0;
    // Keeps the current picture and no timer, until the next setShown. Makes no calls.
    virtual void freeze() = 0;
};

}  // namespace quorvane

// The content of a glass card.
#pragma once

namespace quorvane {

// Main thread only. Each card window has its own content, made for its stage.
class CardContent {
public:
    virtual ~CardContent() = default;
    // While hidden, the content draws nothing and keeps no timer.
    virtual void setShown(bool shown) = 0;
    // Keeps the current picture and no timer, until the next setShown. Makes no calls.
    virtual void freeze() = 0;
};

}  // namespace quorvane

// Card window: a panel that contains a stage. For Objective-C++ only.
#pragma once

#include "drawing/MarginHitTest.hpp"
#include "platform/Clock.hpp"
#include "platform/macos/card/CardStageMacOS.hpp"
#include "platform/macos/card/CardWindow.hpp"

namespace quorvane {

// Main thread only.
class CardWindowMacOS final : public CardSystemWindow {
public:
    CardWindowMacOS(const Rect& frame, Clock clock);
    ~CardWindowMacOS() override;

    long number() const override;
    bool isVisible() const override;
    unsigned long occlusionState() const override;
    void setIgnoresMouseEvents(bool ignores) override;
    void setContent(std::shared_ptr<CardStage> stage) override;
    // The lock screen reserves no areas here.
    void setFrame(const Rect& frame, const Screen& screen) override;
    void orderFrontRegardless() override;
    void orderOut() override;
    void close() override;
    void setAlpha(double alpha) override;
    void animateAlpha(double alpha, Duration duration, std::function<void()> completion) override;
    void setMouseDownObserver(std::function<void(Point)> observer) override;
    // Nothing here covers the card, which is above the lock screen.
    void setCoverObserver(std::function<void(bool)>) override {}

private:
    void primaryButton(NSEventType type, Point location);
    void followPointer();
    void applyMouse();

    CardWindow* panel_;
    std::shared_ptr<CardStageMacOS> stage_;
    std::function<void(Point)> mouseDownObserver_;
    MarginHitTest mouse_;
    Clock clock_;
    Timer nextLook_;  // polls the pointer while no events report it
};

}  // namespace quorvane

// The content of a card window: a stage with the glass card and its shadow, and the player's
// content on it. It knows whether its card is meant to be seen and runs its entrance and exit.
#pragma once

#include <functional>
#include <memory>

#include "AddOnKit/card/CardContent.hpp"
#include "drawing/CardWindows.hpp"
#include "platform/Log.hpp"

namespace quorvane {

// Main thread only. Owned by the controller's entry; held weakly by fades that end later.
class GlassCardView : public std::enable_shared_from_this<GlassCardView> {
public:
    // How every card and its shadow look.
    static CardStyle style();

    GlassCardView(std::shared_ptr<CardStage> stage, std::unique_ptr<CardContent> content,
                  std::function<bool()> reducesMotion, const LogSink& log);

    bool isShown() const { return isShown_; }
    const std::shared_ptr<CardStage>& stage() const { return stage_; }
    // The window that shows it; null once that is closed. The window outlives this view or is taken
    // away first.
    void setWindow(CardSystemWindow* window) { window_ = window; }
    bool hasWindow() const { return window_ != nullptr; }

    // Spring and fade in; without the spring where motion is reduced.
    void runEntrance();
    // Visible at once, any animation ended.
    void showImmediately();
    // Fades out with the content frozen, then hides the stage unless an entrance has begun.
    void runExit();

private:
    long windowNumber() const { return window_ == nullptr ? -1 : window_->number(); }
    void showContent();
    void hideIfStillNotShown();

    CardSystemWindow* window_ = nullptr;
    std::shared_ptr<CardStage> stage_;
    std::unique_ptr<CardContent> content_;
    std::function<bool()> reducesMotion_;
    Logger log_;
    bool isShown_ = false;
};

}  // namespace quorvane

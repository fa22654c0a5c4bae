// The views of a card: stage, shadow, glass and content. For Objective-C++ only.
#pragma once

#include "drawing/CardWindows.hpp"
#include "platform/macos/card/CardRootView.hpp"
#include "platform/macos/card/FirstMouseHostingView.hpp"

namespace quorvane {

// Main thread only.
class CardStageMacOS final : public CardStage {
public:
    explicit CardStageMacOS(const CardStyle& style);

    void setHidden(bool hidden) override;
    void removeAnimations() override;
    void springFrom(const Transform& start, const Spring& spring) override;
    void setScene(const Scene& scene) override;
    void setEvents(StageEvents events) override;

    // For the window that contains the stage.
    CardRootView* root() const { return root_; }
    const CardStyle& style() const { return style_; }

private:
    CardStyle style_;
    CardRootView* root_;
    NSView* stage_;  // the view that is hidden and moved
    FirstMouseHostingView* content_;
};

}  // namespace quorvane

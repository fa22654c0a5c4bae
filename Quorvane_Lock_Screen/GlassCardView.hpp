// The content of a card window: a stage with the glass card, its shadow and the player's content.
// Tracks whether its card should be visible and runs its entrance and exit.
#pragma once

#include <functional>
#include <memory>
#include <set>

#include "AddOnKit/card/CardContent.hpp"
#include "drawing/CardWindows.hpp"
#include "platform/LifeToken.hpp"
#include "platform/Log.hpp"

namespace quorvane {

// Main thread only. Owned by the controller's entry. A fade may end after the view is destroyed.
// While the card cannot be seen, it draws nothing, keeps no timer and takes no presses. It is at
// rest when it can be seen again.
class GlassCardView {
public:
    // The look of every card and its shadow.
    static CardStyle style();

    // `unseen` holds the reasons why no card can be seen now. The window outlives the view.
    GlassCardView(std::shared_ptr<CardStage> stage, std::unique_ptr<CardContent> content,
                  CardSystemWindow& window, std::set<Unseen> unseen,
                  std::function<bool()> reducesMotion, const LogSink& log);

    bool isShown() const { return isShown_; }
    void setUnseen(Unseen reason, bool holds);

    // Springs and fades in; only fades in when Reduce Motion is on.
    void runEntrance();
    // Shows the card at once and ends any animation.
    void showImmediately();
    // Fades out with the content frozen, then hides the stage unless an entrance has begun.
    void runExit();

private:
    bool isSeen() const { return unseen_.empty(); }
    bool beginShowing();
    void hideIfStillNotShown();

    std::shared_ptr<CardStage> stage_;
    CardSystemWindow& window_;
    std::unique_ptr<CardContent> content_;
    std::function<bool()> reducesMotion_;
    Logger log_;
    bool isShown_ = false;
    std::set<Unseen> unseen_;
    LifeToken life_;
};

}  // namespace quorvane

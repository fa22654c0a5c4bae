// The common parts of card windows on X11 and Wayland: the stage, fades, the delivery of presses,
// and accessibility.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "drawing/CardWindows.hpp"
#include "platform/LifeToken.hpp"
#include "platform/linux/card/CardModule.hpp"
#include "platform/linux/card/CardStageLinux.hpp"
#include "platform/linux/drawing/PictureCache.hpp"

namespace quorvane {

// Resources shared by the card windows.
struct CardResources {
    Clock clock;
    MainThread mainThread;
    Logger log;
    AccessibleCards* accessibility = nullptr;
    std::shared_ptr<PictureCache> pictures{};  // shared with the canvases

    static std::shared_ptr<CardResources> make(const CardModuleServices& services);
};

// The module's table with these windows.
CardWindows makeCardWindows(decltype(CardWindows::makeWindow) makeWindow);

// Main thread only. Each subclass's destructor calls `close`.
class CardWindowLinux : public CardSystemWindow, protected StageHost, private AccessibleCard {
public:
    // Whether it was ordered in and still exists.
    bool isVisible() const override { return isOrderedIn_; }
    void setContent(std::shared_ptr<CardStage> stage) override;
    void orderFrontRegardless() override;
    void orderOut() override;
    void close() override;
    void setAlpha(double alpha) override;
    void animateAlpha(double alpha, Duration duration, std::function<void()> completion) override;
    void setMouseDownObserver(std::function<void(Point)> observer) override;
    void setCoverObserver(std::function<void(bool isCovered)> observer) override;

protected:
    static constexpr unsigned long kOcclusionVisible = 2;

    struct Fade {
        double from;                   // to `alpha_`
        std::optional<Instant> begin;  // time of the first frame that shows it
        Duration duration;
        std::function<void()> completion;
    };

    CardWindowLinux(std::shared_ptr<CardResources> resources, const CardPlace& place,
                    const Screen& screen);

    // Shows, redraws or hides the card.
    virtual void update() = 0;
    // Takes the card off the screen.
    virtual void hide() = 0;
    // Whether the window can still appear.
    virtual bool canAppear() const { return true; }
    // The stage's top left, in root pixels or those of its screen.
    virtual Point origin() const = 0;

    void stageChanged() override { updateSoon(); }
    void controlsChanged() override;
    // Coalesces all changes of one main-loop turn into one update: an entrance changes five things,
    // and no intermediate state may be visible.
    virtual void updateSoon();
    void beginAnimations(Instant now);
    void finishFade(Instant now);
    virtual void endFade();
    double alphaAt(Instant now) const;
    bool isMoving(Instant now) const { return fade_ || stage_->isMoving(now); }
    bool shouldBeVisible() const;
    double scale() const { return screen_.scale * contentScale_; }  // pixels per point of the stage
    // Posted, so that the content is never called from inside a call to its window.
    void deliver(const PointerEvent& event);
    // A hidden card is not exposed to assistive technology.
    void setAccessible(bool isSeen);
    // Reports a change to the observer.
    void setCovered(bool isCovered);
    bool isCovered() const { return isCovered_; }
    // Hides the window and ends its fade.
    void vanish();

    std::shared_ptr<CardResources> resources_;
    Screen screen_;
    double contentScale_;
    double alpha_ = 0;
    bool ignoresMouseEvents_ = true;
    bool isOrderedIn_ = false;
    bool isUpdatePosted_ = false;
    std::shared_ptr<CardStageLinux> stage_;
    std::optional<Fade> fade_;

private:
    const Scene& accessibleScene() const override { return stage_->scene(); }
    Point accessibleOrigin() const override;
    double accessibleScale() const override { return scale(); }
    Size accessibleSize() const override { return stage_->style().card; }
    void perform(SceneControl::ID control, AccessibilityAction action) override;
    void setNumber(SceneControl::ID control, double number) override;
    void picturesArrived();
    void post(std::function<void()> action);
    // Calls the present content later, also if it has been replaced by then.
    void postToContent(std::function<void(const StageEvents&)> action);

    bool isAccessible_ = false;  // on the accessibility bus
    bool isCovered_ = false;
    std::function<void(Point)> mouseDownObserver_;
    std::function<void(bool)> coverObserver_;
    Handle pictures_;
    LifeToken life_;
};

}  // namespace quorvane

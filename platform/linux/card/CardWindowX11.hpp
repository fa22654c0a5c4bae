// A card window on X11: visibility, fades, and the delivery of presses.
#pragma once

#include <memory>
#include <optional>

#include "drawing/CardWindows.hpp"
#include "platform/Clock.hpp"
#include "platform/LifeToken.hpp"
#include "platform/Listeners.hpp"
#include "platform/Log.hpp"
#include "platform/MainThread.hpp"
#include "platform/linux/accessibility/AccessibleCard.hpp"
#include "platform/linux/card/CardDisplay.hpp"
#include "platform/linux/card/CardPointer.hpp"
#include "platform/linux/card/CardStageX11.hpp"
#include "platform/linux/card/CardXWindow.hpp"

namespace quorvane {

// Resources shared by the card windows.
struct CardResources {
    X11Session& x11;
    Clock clock;
    MainThread mainThread;
    Logger log;
    AccessibleCards* accessibility = nullptr;
    std::shared_ptr<PictureCache> pictures{};  // shared with the canvases
    Listeners<> picturesArrived{};
};

// Main thread only. The X window is mapped only while part of the card is visible: at alpha 0 the
// lock screen looks as if there were no card. When the locker's window is destroyed the server
// destroys this one too; afterwards this object shows nothing.
class CardWindowX11 final : public CardSystemWindow, private StageHost, private AccessibleCard {
public:
    // Returns null when no locker's window can hold it; the reason is logged.
    static std::unique_ptr<CardWindowX11> make(std::shared_ptr<CardResources> resources,
                                               const WindowSettings& settings,
                                               const Screen& screen);
    ~CardWindowX11() override;

    long number() const override { return number_; }
    // Whether it was ordered in and still exists.
    bool isVisible() const override { return isOrderedIn_; }
    unsigned long occlusionState() const override;
    void setIgnoresMouseEvents(bool ignores) override;
    void setContent(std::shared_ptr<CardStage> stage) override;
    void setFrame(const Rect& frame, const Screen& screen) override;
    void orderFrontRegardless() override;
    void orderOut() override;
    void close() override;
    void setAlpha(double alpha) override;
    void animateAlpha(double alpha, Duration duration, std::function<void()> completion) override;
    void setMouseDownObserver(std::function<void(Point)> observer) override;

private:
    struct Fade {
        double from;
        double to;
        std::optional<Instant> begin;  // time of the first frame that shows it
        Duration duration;
        std::function<void()> completion;
    };

    CardWindowX11(std::shared_ptr<CardResources> resources, const WindowSettings& settings,
                  const Screen& screen);
    void sceneChanged(const std::vector<Rect>& areas) override;
    void controlsChanged() override;
    void stageChanged() override { updateSoon(); }
    const Scene& accessibleScene() const override { return stage_->scene(); }
    Point accessibleOrigin() const override;
    double accessibleScale() const override { return scale(); }
    Size accessibleSize() const override { return stage_->style().card; }
    void perform(SceneControl::ID control, AccessibilityAction action) override;
    void setNumber(SceneControl::ID control, double number) override;
    void tellAccessibility(bool isSeen);
    void picturesArrived();

    void updateSoon();
    void update();
    void finishFade(Instant now);
    void endFade();
    void beginAnimations(Instant now);
    void updateAfter(Duration delay);
    bool isMoving(Instant now) const;
    bool isToBeSeen() const;
    bool show(Instant now);
    void hide();
    void conceal();
    double alphaAt(Instant now) const;
    double scale() const { return screen_.scale * contentScale_; }  // pixels per point of the stage
    StageLook look(Instant now) const;
    void syncPointer();
    void pointerEvent(const PointerEvent& event);
    void moveArrow(std::optional<Point> place);
    void vanish();
    void post(std::function<void()> action);

    std::shared_ptr<CardResources> resources_;
    Screen screen_;
    double contentScale_;
    long number_ = -1;
    double alpha_;
    bool ignoresMouseEvents_;
    bool isOrderedIn_ = false;
    bool isUpdatePosted_ = false;
    bool isAccessible_ = false;  // assistive technology knows of it
    std::shared_ptr<CardStageX11> stage_;
    std::optional<Fade> fade_;
    Instant readableAt_{};  // when the locker's picture can be read
    std::optional<Point> arrow_;
    std::function<void(Point)> mouseDownObserver_;
    Timer nextFrame_;
    Handle pictures_;
    // Each refers to the one above.
    std::unique_ptr<CardXWindow> child_;
    std::unique_ptr<CardDisplay> display_;
    std::unique_ptr<CardPointer> pointer_;
    LifeToken life_;
};

}  // namespace quorvane

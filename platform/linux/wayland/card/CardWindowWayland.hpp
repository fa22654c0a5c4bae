// A card window on Wayland: visibility, fades, drawing at the compositor's pace, and the delivery
// of presses.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "drawing/CardWindows.hpp"
#include "platform/Clock.hpp"
#include "platform/LifeToken.hpp"
#include "platform/Listeners.hpp"
#include "platform/Log.hpp"
#include "platform/MainThread.hpp"
#include "platform/linux/accessibility/AccessibleCard.hpp"
#include "platform/linux/card/CardPainter.hpp"
#include "platform/linux/card/CardStageX11.hpp"
#include "platform/linux/card/PressTracker.hpp"
#include "platform/linux/wayland/WaylandSession.hpp"
#include "platform/linux/wayland/card/SharedPictures.hpp"

namespace quorvane {

// Resources shared by the card windows.
struct WaylandCardResources {
    WaylandSession& session;
    Clock clock;
    MainThread mainThread;
    Logger log;
    AccessibleCards* accessibility = nullptr;
    std::shared_ptr<PictureCache> pictures{};  // shared with the canvases
    Listeners<> picturesArrived{};
    long windowsMade = 0;
};

// Main thread only. Its surface exists only while part of the card is visible. The shadow has real
// alpha and takes no pointer, so it may reach into an area to keep clear.
class CardWindowWayland final : public CardSystemWindow, private StageHost, private AccessibleCard {
public:
    CardWindowWayland(std::shared_ptr<WaylandCardResources> resources,
                      const WindowSettings& settings, const Screen& screen);
    ~CardWindowWayland() override;

    long number() const override { return number_; }
    bool isVisible() const override { return isOrderedIn_; }
    unsigned long occlusionState() const override { return shown_ ? 2 : 0; }
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
    // What exists only while the card is visible.
    struct Shown {
        CardPainter painter;
        std::unique_ptr<SharedPictures> pictures;
        std::uint32_t surface = 0;
        bool awaitsFrame = false;   // the compositor will tell when to draw
        bool isStale = true;        // everything must be drawn
        std::vector<Rect> areas{};  // that must be drawn, in card coordinates
    };

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
    double alphaAt(Instant now) const;
    bool isMoving(Instant now) const;
    bool isToBeSeen() const;
    bool show();
    void hide();
    void vanish();
    void drawIfPaced(Instant now);
    std::vector<PixelRect> draw(cairo_surface_t* target, const StageLook& look);
    void syncInput();
    void pointerEvent(const FromSurface& message);
    void report(const std::optional<PointerEvent>& event);
    double scale() const { return screen_.scale * contentScale_; }  // pixels per point of the stage
    void post(std::function<void()> action);

    std::shared_ptr<WaylandCardResources> resources_;
    Screen screen_;
    Rect frame_;
    double contentScale_;
    long number_;
    double alpha_;
    bool ignoresMouseEvents_;
    bool isOrderedIn_ = false;
    bool isUpdatePosted_ = false;
    bool isAccessible_ = false;  // assistive technology knows of it
    std::shared_ptr<CardStageX11> stage_;
    std::optional<Fade> fade_;
    std::function<void(Point)> mouseDownObserver_;
    Timer fadeEnd_;
    Handle pictures_;
    std::optional<Shown> shown_;
    PressTracker press_;
    LifeToken life_;
};

}  // namespace quorvane

// The interfaces of card windows and of the stages that show a card inside them. Main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "drawing/Geometry.hpp"
#include "drawing/Scene.hpp"
#include "drawing/Screens.hpp"
#include "drawing/Spring.hpp"

namespace quorvane {

struct PointerEvent {
    enum class Kind { down, dragged, up, cancelled };  // of the primary button
    Kind kind;
    Point location;  // points inside the card, origin at its top left, y growing downward
};

// Actions that assistive technology requests of a control.
enum class AccessibilityAction { press, increment, decrement };

// The callbacks of a stage to its content. Called on the main thread, never inside a call to the
// stage.
struct StageEvents {
    std::function<void(const PointerEvent&)> pointer;
    std::function<void(SceneControl::ID, AccessibilityAction)> accessibility;
    // Assistive technology sets a slider's number.
    std::function<void(SceneControl::ID, double)> accessibilityNumber{};
};

// The look of the card and its shadow. Lengths are points; the shadow's offset grows downward.
struct CardStyle {
    Size card;
    double shadowMargin = 0;  // the stage is the card grown by this on every side
    double cornerRadius = 0;
    std::int64_t glassStyle = 0;  // the system's raw style value
    double shadowOpacity = 0;
    double shadowRadius = 0;
    double shadowOffset = 0;
    double textBottom = 0;  // from the card's top; only symbols and bars are below
};

// The view with glass, shadow and content. It is hidden when created. Animations and hiding apply
// to it.
class CardStage {
public:
    virtual ~CardStage() = default;
    virtual void setHidden(bool hidden) = 0;
    // Ends running animations of the stage and leaves its transform at identity.
    virtual void removeAnimations() = 0;
    // Animates the stage's transform from `start` to identity over the spring's settling duration.
    // `start` is in stage coordinates with y growing downward.
    virtual void springFrom(const Transform& start, const Spring& spring) = 0;
    // Shows this scene from now on, on top of the glass.
    virtual void setScene(const Scene& scene) = 0;
    virtual void setEvents(StageEvents events) = 0;
};

struct CardPlace {
    Rect frame;  // of the window: global points, y growing upward
    // Of the whole card: below 1 where the lock screen leaves less room than its own size. The
    // frame is that of the scaled stage; coordinates inside the stage stay unscaled. Only screens
    // with keep-clear areas have scaled cards.
    double scale = 1;
    bool operator==(const CardPlace&) const = default;
};

// One system window, above all others. It never becomes key or main and never takes the keyboard.
// At first it is transparent and ignores mouse events.
class CardSystemWindow {
public:
    virtual ~CardSystemWindow() = default;
    virtual long number() const = 0;  // the window server's number; -1 while it has none
    virtual bool isVisible() const = 0;
    virtual unsigned long occlusionState() const = 0;
    virtual void setIgnoresMouseEvents(bool ignores) = 0;
    virtual void setContent(std::shared_ptr<CardStage> stage) = 0;  // null: no content
    // Moves the window. From now on this screen's keep-clear areas are cut out of it, as they are
    // when it is created.
    virtual void setFrame(const Rect& frame, const Screen& screen) = 0;
    virtual void orderFrontRegardless() = 0;
    virtual void orderOut() = 0;
    virtual void close() = 0;
    // Sets the alpha at once, ending a fade.
    virtual void setAlpha(double alpha) = 0;
    // Fades to `alpha`. The completion runs on the main thread when the fade ends or a later one
    // replaces it.
    virtual void animateAlpha(double alpha, Duration duration,
                              std::function<void()> completion) = 0;
    // The observer is called for each primary button press on the window, before the press is
    // handled, with its place in window coordinates.
    virtual void setMouseDownObserver(std::function<void(Point)> observer) = 0;
    // The observer is called, never inside a call to the window, when other windows begin to cover
    // all of it or the system stops showing its pictures, and when that ends. A window that is not
    // on the screen counts as uncovered.
    virtual void setCoverObserver(std::function<void(bool isCovered)> observer) = 0;
};

struct CardWindows {
    // Returns null when the system cannot create a window now; the platform logs the reason. The
    // window never covers the screen's keep-clear areas: where its shadow margin overlaps one, that
    // part is cut out of its shape, or blends with what the lock screen draws there.
    std::function<std::unique_ptr<CardSystemWindow>(const CardPlace&, const Screen&)> makeWindow;
    std::function<std::shared_ptr<CardStage>(const CardStyle&)> makeStage;
    std::function<bool()> reducesMotion;
    MeasureText measureText;
    // The widest text that a stage moves by its stated motion, in pixels.
    double widestMovedText = 0;
};

}  // namespace quorvane

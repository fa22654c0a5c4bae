#include "AddOnKit/card/PlayerCard.hpp"

#include <algorithm>
#include <utility>

#include "AddOnKit/card/PlayerView.hpp"
#include "AddOnKit/card/PressHighlightStyle.hpp"

namespace quorvane {
namespace {

constexpr Duration kArtworkFade = std::chrono::milliseconds{350};
// A frame may be late by 1/kUnseenShare of its wait, which is not visible. This lets the
// once-a-second change of the times share its wake-up with the poll.
constexpr int kUnseenShare = 200;

}  // namespace

PlayerCard::PlayerCard(PlayerModel& model, PlayerActions actions, std::shared_ptr<CardStage> stage,
                       PlayerCardEnvironment environment)
    : model_(model),
      actions_(std::move(actions)),
      stage_(std::move(stage)),
      environment_(std::move(environment)) {
    stage_->setEvents(
        {.pointer =
             [this](const PointerEvent& event) {
                 if (!isShown_) return;
                 switch (event.kind) {
                     case PointerEvent::Kind::down: return pointerDown(event.location);
                     case PointerEvent::Kind::dragged: return pointerDragged(event.location);
                     case PointerEvent::Kind::up: return pointerUp(event.location);
                     case PointerEvent::Kind::cancelled: return endPress();
                 }
             },
         .accessibility = [this](SceneControl::ID id,
                                 AccessibilityAction action) { accessibility(id, action); },
         .accessibilityNumber =
             [this](SceneControl::ID id, double number) {
                 if (isShown_ && id == SceneControl::ID::volume) slider().setNumber(number);
             }});
}

PlayerCard::~PlayerCard() {
    setShown(false);
    stage_->setEvents({});
}

void PlayerCard::setShown(bool shown) {
    const bool wasFrozen = std::exchange(isFrozen_, false);
    if (shown == isShown_) {
        if (shown && wasFrozen) draw();
        return;
    }
    if (shown) {
        isShown_ = true;
        observations_ = model_.observe([this] { drawSoon(); });
        shown_ = {};
        draw();
        return;
    }
    isShown_ = false;
    observations_.clear();
    cancelDraw();
    const auto pressed = std::exchange(pressed_, std::nullopt);
    // Transitions restart at rest when the card is shown again; the marquees keep their start
    // times.
    interaction_ = {.titleStart = interaction_.titleStart, .artistStart = interaction_.artistStart};
    artwork_.reset();
    // Last, because the command at the end of a drag may run the main loop, which may destroy the
    // card.
    if (pressed == SceneControl::ID::volume) slider().dragEnded();
}

void PlayerCard::freeze() {
    isFrozen_ = true;
    cancelDraw();
}

void PlayerCard::cancelDraw() {
    isDrawingSoon_ = false;
    nextDraw_.reset();
}

void PlayerCard::draw() {
    const Instant now = environment_.clock.now();
    followTexts(now);
    followArtwork(now);
    VolumeSlider::thicken(interaction_.thickening, model_.isDraggingVolume.get(), now);

    environment_.view.isRightToLeft = environment_.isRightToLeft();
    environment_.view.reduceMotion = environment_.reducesMotion();
    PlayerScene made =
        PlayerView{model_, environment_.view}.scene(interaction_, {now, environment_.wallClock()});
    const bool isNew = !(made.scene == shown_.scene);
    shown_ = std::move(made);
    drawNext();
    if (isNew) stage_->setScene(shown_.scene);
}

void PlayerCard::drawNext() {
    cancelDraw();
    if (const auto wait = shown_.scene.nextChange)
        nextDraw_ =
            environment_.clock.afterAbout(*wait, *wait / kUnseenShare, [this] { scroll(); });
}

// Like `draw`, but for frames where only time has passed. Reduce Motion may have been turned on
// since.
void PlayerCard::scroll() {
    const Instant now = environment_.clock.now();
    if (!shown_.holds(now) || environment_.reducesMotion()) return draw();
    shown_.scroll(now);
    drawNext();
    stage_->setScene(shown_.scene);
}

// Coalesces all changes of one main-loop pass into one drawing.
void PlayerCard::drawSoon() {
    if (isFrozen_ || isDrawingSoon_) return;
    isDrawingSoon_ = true;
    nextDraw_ = environment_.clock.after({}, [this] { draw(); });
}

void PlayerCard::followTexts(Instant now) {
    const auto follow = [now](std::optional<std::string>& last, const std::string& present,
                              std::optional<Instant>& start) {
        if (last == present) return;
        last = present;
        start = now;
    };
    follow(title_, model_.title.get(), interaction_.titleStart);
    follow(artist_, model_.artist.get(), interaction_.artistStart);
}

void PlayerCard::followArtwork(Instant now) {
    Transition& change = interaction_.artworkChange;
    const ImageRef& artwork = model_.artwork.get();
    if (model_.isArtworkArriving.get()) {
        // The previous artwork stays until the new one can be drawn.
        interaction_.oldArtwork = artwork_.value_or(nullptr);
        change = Transition{0};
        return;
    }
    if (artwork_ && *artwork_ != artwork) {
        interaction_.oldArtwork = *artwork_;
        change = Transition{0};
        change.moveTo(1, Transition::Curve::easeInOut, kArtworkFade, now);
    } else if (change.target() == 0) {
        change = Transition{1};
    }
    artwork_ = artwork;
    if (!change.isMoving(now)) interaction_.oldArtwork.reset();
}

const SceneControl* PlayerCard::control(SceneControl::ID id) const {
    const auto found = std::ranges::find(shown_.scene.controls, id, &SceneControl::id);
    return found == shown_.scene.controls.end() ? nullptr : &*found;
}

void PlayerCard::pointerDown(Point location) {
    const auto life = life_.watch();
    endPress();  // ends a previous press whose release never arrived
    if (life.isOver()) return;
    const auto found =
        std::ranges::find_if(shown_.scene.controls, [&](const SceneControl& candidate) {
            const bool reacts = candidate.role == SceneControl::Role::button ||
                                candidate.role == SceneControl::Role::slider;
            return reacts && candidate.frame.contains(location);
        });
    if (found == shown_.scene.controls.end()) return;
    pressed_ = found->id;
    pointerDragged(location);
}

void PlayerCard::pointerDragged(Point location) {
    const SceneControl* const target = pressed_ ? control(*pressed_) : nullptr;
    if (!target) return;
    if (target->role == SceneControl::Role::slider)
        slider().dragChanged(location.x - target->frame.x, target->frame.width);
    else
        highlight(target->frame.contains(location));
}

void PlayerCard::pointerUp(Point location) {
    const SceneControl* const target = pressed_ ? control(*pressed_) : nullptr;
    const bool fires =
        target && target->role == SceneControl::Role::button && target->frame.contains(location);
    const std::optional<SceneControl::ID> id = pressed_;
    endPress();
    if (fires) fire(*id);
}

// Ends the press without the button's action. A drag ends at its current volume.
void PlayerCard::endPress() {
    if (!pressed_) return;
    if (pressed_ == SceneControl::ID::volume) {
        pressed_.reset();
        slider().dragEnded();
        return;
    }
    highlight(false);
    pressed_.reset();
}

void PlayerCard::highlight(bool isHighlighted) {
    Transition* const press = interaction_.press(*pressed_);
    if (!press || (press->target() > 0) == isHighlighted) return;
    PressHighlightStyle::turn(*press, isHighlighted, environment_.clock.now());
    drawSoon();
}

void PlayerCard::accessibility(SceneControl::ID id, AccessibilityAction action) {
    const SceneControl* const target = isShown_ ? control(id) : nullptr;
    if (!target) return;
    if (target->role == SceneControl::Role::slider) return slider().adjust(action);
    if (action == AccessibilityAction::press) fire(id);
}

// Must be the caller's last call, because the action may change or destroy any object.
void PlayerCard::fire(SceneControl::ID id) {
    const std::function<void()>* action = nullptr;
    switch (id) {
        case SceneControl::ID::previous: action = &actions_.previous; break;
        case SceneControl::ID::playPause: action = &actions_.playPause; break;
        case SceneControl::ID::next: action = &actions_.next; break;
        case SceneControl::ID::love: action = &actions_.toggleLove; break;
        default: break;
    }
    if (!action || !*action) return;
    const std::function<void()> copy = *action;
    copy();
}

}  // namespace quorvane

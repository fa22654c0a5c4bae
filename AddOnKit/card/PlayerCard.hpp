// Content of one card window: draws the player's model, tracks presses and drags, and calls the
// card's actions.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "AddOnKit/card/CardContent.hpp"
#include "AddOnKit/card/PlayerEnvironment.hpp"
#include "AddOnKit/card/PlayerInteraction.hpp"
#include "AddOnKit/card/PlayerScene.hpp"
#include "AddOnKit/card/VolumeSlider.hpp"
#include "AddOnKit/player/PlayerActions.hpp"
#include "AddOnKit/player/PlayerModel.hpp"
#include "platform/LifeToken.hpp"

namespace quorvane {

struct PlayerCardEnvironment {
    Clock clock;
    WallClock wallClock;
    std::function<bool()> reducesMotion;
    std::function<bool()> isRightToLeft;
    PlayerEnvironment view;  // without these two settings, which each drawing reads again
};

// Main thread only. The model outlives the card. Draws on the stage and handles its events. While
// shown, the card draws when the model changes, on input, and when its scene's next change is due.
// While frozen it draws nothing. While not shown it also keeps no timer and no subscription. A
// button's action may destroy the card.
class PlayerCard final : public CardContent {
public:
    PlayerCard(PlayerModel& model, PlayerActions actions, std::shared_ptr<CardStage> stage,
               PlayerCardEnvironment environment);
    ~PlayerCard() override;
    PlayerCard(const PlayerCard&) = delete;
    PlayerCard& operator=(const PlayerCard&) = delete;

    void setShown(bool shown) override;
    void freeze() override;

private:
    void draw();
    void drawSoon();
    void drawNext();
    void cancelDraw();
    void scroll();
    void followTexts(Instant now);
    void followArtwork(Instant now);

    void pointerDown(Point location);
    void pointerDragged(Point location);
    void pointerUp(Point location);
    void endPress();
    void highlight(bool isHighlighted);
    void accessibility(SceneControl::ID id, AccessibilityAction action);
    void fire(SceneControl::ID id);
    const SceneControl* control(SceneControl::ID id) const;
    VolumeSlider slider() const { return {model_, actions_, shown_.scene.isRightToLeft}; }

    PlayerModel& model_;
    const PlayerActions actions_;
    const std::shared_ptr<CardStage> stage_;
    PlayerCardEnvironment environment_;
    bool isShown_ = false;
    bool isFrozen_ = false;
    PlayerScene shown_;
    PlayerInteraction interaction_;
    std::optional<SceneControl::ID> pressed_;

    // The values drawn last, to detect changes.
    std::optional<std::string> title_;
    std::optional<std::string> artist_;
    std::optional<ImageRef> artwork_;  // the last one that was not still arriving
    LifeToken life_;

    // Declared last so that they are destroyed first, while the card is still whole.
    std::vector<Handle> observations_;
    Timer nextDraw_;
    bool isDrawingSoon_ = false;  // nextDraw_ fires on the next turn of the main loop
};

}  // namespace quorvane

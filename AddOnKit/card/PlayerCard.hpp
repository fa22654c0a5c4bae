// The content of one card window: it draws the player's model, follows presses and drags, and calls
// the card's actions.
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
    Localized localized{};  // unset: the keys themselves
    MeasureText measureText{};
    std::function<bool()> reducesMotion{};
    std::function<bool()> isRightToLeft{};
    double scale = 1;  // pixels a point of the card's screen
    std::optional<WallTime> playerFrozenDate{};
    std::optional<double> marqueeFrozenTime{};
    std::optional<bool> marqueeReduceMotion{};
};

// Main thread only. The model outlives it. While shown it draws when the model has changed, when it
// is touched, and when its scene says so. While frozen it draws nothing, and while not shown it
// also keeps no timer and no subscription. A button's action may end in the card's destruction.
class PlayerCard final : public CardContent {
public:
    PlayerCard(PlayerModel& model, PlayerActions actions, PlayerCardEnvironment environment);
    ~PlayerCard() override;
    PlayerCard(const PlayerCard&) = delete;
    PlayerCard& operator=(const PlayerCard&) = delete;

    void attach(std::shared_ptr<CardStage> stage) override;
    void setShown(bool shown) override;
    void freeze() override;

private:
    PlayerEnvironment viewEnvironment() const;
    bool reducesMotion() const;
    void draw();
    void drawSoon();
    void drawNext();
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
    const PlayerCardEnvironment environment_;
    std::shared_ptr<CardStage> stage_;
    bool isShown_ = false;
    bool isFrozen_ = false;
    PlayerScene shown_;
    PlayerInteraction interaction_;
    std::optional<SceneControl::ID> pressed_;

    // What was drawn last, to notice what has changed.
    std::optional<std::string> title_;
    std::optional<std::string> artist_;
    std::optional<ImageRef> artwork_;  // the last one that was not still arriving
    LifeToken life_;

    // Last: their ends may not find a half-destroyed card.
    std::vector<Handle> observations_;
    Timer nextDraw_;
};

}  // namespace quorvane

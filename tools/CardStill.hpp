// Draws the card at one moment: backdrop, glass and shadow, content.
#pragma once

#include <expected>
#include <memory>
#include <string>

#include "AddOnKit/card/PlayerEnvironment.hpp"
#include "AddOnKit/card/PlayerInteraction.hpp"
#include "AddOnKit/player/PlayerModel.hpp"
#include "drawing/pictures/Pixels.hpp"
#include "platform/linux/drawing/CairoCanvas.hpp"
#include "tools/CardRenderOptions.hpp"

namespace quorvane {

// Takes language and direction from the environment where the options name none.
bool isRightToLeft(const CardRenderOptions& options);

class CardStill {
public:
    // Fails with a sentence when the backdrop can't be read.
    static std::expected<std::unique_ptr<CardStill>, std::string> make(
        const QuorvanePlayerState& state, const CardRenderOptions& options);

    // `elapsed` seconds after the options' moment.
    CairoSurface draw(double elapsed);

private:
    CardStill(const QuorvanePlayerState& state, const CardRenderOptions& options);

    CardRenderOptions options_;
    WallTime date_;
    PlayerModel model_;
    PlayerEnvironment environment_;
    PlayerInteraction interaction_;
    CairoCanvas canvas_;
    Pixels chrome_;  // the card and its margin; empty to draw the content alone
    Pixels backdrop_;
};

}  // namespace quorvane

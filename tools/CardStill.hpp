// The card at one moment as a picture: backdrop, glass and shadow, content.
#pragma once

#include <expected>
#include <memory>
#include <string>

#include "AddOnKit/PlayerEnvironment.hpp"
#include "AddOnKit/PlayerInteraction.hpp"
#include "AddOnKit/PlayerModel.hpp"
#include "platform/linux/CairoCanvas.hpp"
#include "platform/linux/Pixels.hpp"
#include "tools/CardRenderOptions.hpp"

namespace quorvane {

// What the options leave open is as in the environment's language.
bool isRightToLeft(const CardRenderOptions& options);

class CardStill {
public:
    // Fails with a sentence when the backdrop cannot be had.
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
    Pixels chrome_;  // of the stage: the card and the margin around it; empty: the content alone
    Pixels backdrop_;
};

}  // namespace quorvane

// A line of text that scrolls round when it is too long for its field, resting at the start of
// every cycle.
#pragma once

#include <optional>
#include <string>

#include "drawing/Scene.hpp"

namespace quorvane {

// A view value. A text that is too long rests on its own start and moves toward it, whichever way
// the card is laid out.
struct MarqueeText {
    std::string text;
    FontStyle font{};
    Color color{};
    bool reduceMotion = false;
    std::optional<double> frozenTime{};          // draws this moment of the cycle, in seconds
    std::optional<bool> reduceMotionOverride{};  // instead of reduceMotion when set
    bool isRightToLeft = false;                  // the card's layout
    double textWidth = 0;
    double fieldWidth = 0;
    std::optional<Instant> start{};  // of the first cycle

    // How far a text of this width has moved after `elapsed` seconds.
    static double offset(double elapsed, double width);
    // How long one round of it takes, in seconds.
    static double cycle(double width);

    bool isTooLong() const { return textWidth > fieldWidth; }
    bool scrolls() const;
    // A text that scrolls fades out inside its field, and in before it, so that its beginning is
    // not dimmed while it rests.
    TextNode node(const Rect& field, Instant now) const;
    // How long until it moves by another pixel; nullopt for a text that stays where it is.
    std::optional<Duration> nextChange(Instant now, double scale) const;

private:
    double elapsed(Instant now) const;
};

}  // namespace quorvane

// Scrolling line of text for a title that is too long for its field. It pauses at the start of
// every cycle.
#pragma once

#include <optional>
#include <string>

#include "drawing/Scene.hpp"

namespace quorvane {

// View value. A text that is too long pauses at its own beginning and scrolls toward its end,
// whichever direction the card is laid out in.
struct MarqueeText {
    std::string text;
    FontStyle font{};
    Color color{};
    bool reduceMotion = false;
    std::optional<double> frozenTime{};          // draws this moment of the cycle, in seconds
    std::optional<bool> reduceMotionOverride{};  // replaces reduceMotion when set
    bool isRightToLeft = false;                  // the card's layout
    double textWidth = 0;
    double fieldWidth = 0;
    bool isMovedByStage = false;
    std::optional<Instant> start{};  // of the first cycle

    // The distance that a text of this width has moved after `elapsed` seconds, in points.
    static double offset(double elapsed, double width);
    // The duration of one cycle, in seconds.
    static double cycle(double width);

    bool isTooLong() const { return textWidth > fieldWidth; }
    bool scrolls() const;
    // A scrolling text's trailing fade is inside its field. Its leading fade is before the field,
    // so that the pausing text is not dimmed.
    TextNode node(const Rect& field, Instant now) const;
    // The time until the text moves by another pixel; nullopt when it does not move.
    std::optional<Duration> nextChange(Instant now, double scale) const;

private:
    double elapsed(Instant now) const;
};

}  // namespace quorvane

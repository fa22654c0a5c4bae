#include "AddOnKit/card/MarqueeText.hpp"

#include <algorithm>
#include <cmath>

#include "drawing/TextDirection.hpp"
#include "platform/Seconds.hpp"

namespace quorvane {
namespace {

constexpr double kSpeed = 32;  // points per second
constexpr double kGap = 40;
constexpr double kRest = 2.5;  // seconds
constexpr double kFade = 12;   // at each end
constexpr double kShortestFrame = 1.0 / 65;

double phase(double elapsed, double width) {
    const double cycle = MarqueeText::cycle(width);
    if (!(cycle > 0) || !std::isfinite(elapsed)) return 0;
    return std::fmod(std::max(elapsed, 0.0), cycle);
}

Duration roundedUp(double seconds) {
    return std::chrono::ceil<Duration>(std::chrono::duration<double>(seconds));
}

}  // namespace

double MarqueeText::cycle(double width) { return (width + kGap) / kSpeed + kRest; }

double MarqueeText::offset(double elapsed, double width) {
    return std::max(phase(elapsed, width) - kRest, 0.0) * kSpeed;
}

bool MarqueeText::scrolls() const {
    return isTooLong() && !reduceMotionOverride.value_or(reduceMotion);
}

double MarqueeText::elapsed(Instant now) const {
    if (frozenTime) return *frozenTime;
    return start ? secondsOf(now - *start) : 0;
}

TextNode MarqueeText::node(const Rect& field, Instant now) const {
    TextNode node{.frame = field, .text = text, .font = font, .color = color};
    // Only a text that fits its field is aligned with the card; a longer one begins at its own
    // start.
    if (isTooLong() && readsRightToLeft(text, isRightToLeft) != isRightToLeft)
        node.alignment = TextAlignment::trailing;
    if (!scrolls()) return node;
    node.frame = {field.x - (isRightToLeft ? 0 : kFade), field.y, field.width + kFade,
                  field.height};
    node.scroll = TextNode::Scroll{
        .offset = offset(elapsed(now), textWidth) - kFade, .gap = kGap, .fade = kFade};
    if (isMovedByStage && !frozenTime) {
        node.scroll->offset = -kFade;
        node.scroll->motion = TextNode::Motion{kRest, kSpeed};
    }
    return node;
}

std::optional<Duration> MarqueeText::nextChange(Instant now, double scale) const {
    if (!scrolls() || frozenTime) return std::nullopt;
    const double moved = phase(elapsed(now), textWidth) - kRest;
    // Frames fall on whole pixels, a constant number of pixels apart. So the text moves evenly, and
    // a slightly late frame still shows its intended pixel.
    const double pixel = 1 / (kSpeed * scale);
    const double step = pixel * std::ceil(kShortestFrame / pixel);
    if (moved < 0) return roundedUp(step - moved);
    const double wait = step - std::fmod(moved, step);
    return roundedUp(wait < step / 2 ? wait + step : wait);
}

}  // namespace quorvane

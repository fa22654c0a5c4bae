#include "AddOnKit/card/PressHighlightStyle.hpp"

namespace quorvane::PressHighlightStyle {
namespace {

constexpr double kHighlightOpacity = 0.16;
constexpr double kPressedScale = 0.9;
constexpr double kPressedOpacity = 0.75;
constexpr Duration kDown = std::chrono::milliseconds{80};
constexpr Duration kBack = std::chrono::milliseconds{220};

}  // namespace

void draw(Scene& scene, const Rect& frame, double amount, SymbolNode symbol) {
    symbol.frame = frame;
    if (amount <= 0) {
        scene.nodes.push_back(symbol);
        return;
    }
    scene.nodes.push_back(
        ShapeNode{frame, frame.height / 2, Color::white(kHighlightOpacity * amount)});
    scene.nodes.push_back(GroupBegin{.transform = {.scale = 1 - (1 - kPressedScale) * amount,
                                                   .centre = {frame.midX(), frame.midY()}},
                                     .opacity = 1 - (1 - kPressedOpacity) * amount});
    scene.nodes.push_back(symbol);
    scene.nodes.push_back(GroupEnd{});
}

void turn(Transition& amount, bool isPressed, Instant now) {
    amount.moveTo(isPressed ? 1 : 0, Transition::Curve::easeOut, isPressed ? kDown : kBack, now);
}

}  // namespace quorvane::PressHighlightStyle

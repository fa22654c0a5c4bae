#include "AddOnKit/card/PressHighlightStyle.hpp"

#include <algorithm>

namespace quorvane {
namespace {

constexpr double kHighlightOpacity = 0.16;
constexpr double kPressedScale = 0.9;
constexpr double kPressedOpacity = 0.75;
constexpr double kRoundedShapeRadius = 10;
constexpr Duration kDown = std::chrono::milliseconds{80};
constexpr Duration kBack = std::chrono::milliseconds{220};

}  // namespace

void PressHighlightStyle::draw(Scene& scene, const Rect& place, double amount,
                               SymbolNode symbol) const {
    const Point centre{place.midX(), place.midY()};
    symbol.frame = {centre.x - width / 2, centre.y - height / 2, width, height};
    if (amount <= 0) {
        scene.nodes.push_back(symbol);
        return;
    }
    const double side = std::min(width, height);
    const Rect round{centre.x - side / 2, centre.y - side / 2, side, side};
    scene.nodes.push_back(ShapeNode{circle ? round : symbol.frame,
                                    circle ? side / 2 : kRoundedShapeRadius,
                                    Color::white(kHighlightOpacity * amount)});
    scene.nodes.push_back(
        GroupBegin{.transform = {.scale = 1 - (1 - kPressedScale) * amount, .centre = centre},
                   .opacity = 1 - (1 - kPressedOpacity) * amount});
    scene.nodes.push_back(symbol);
    scene.nodes.push_back(GroupEnd{});
}

void PressHighlightStyle::turn(Transition& amount, bool isPressed, Instant now) {
    amount.moveTo(isPressed ? 1 : 0, Transition::Curve::easeOut, isPressed ? kDown : kBack, now);
}

}  // namespace quorvane

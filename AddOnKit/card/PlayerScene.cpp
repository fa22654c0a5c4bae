#include "AddOnKit/card/PlayerScene.hpp"

#include <algorithm>

namespace quorvane {

void PlayerScene::scroll(Instant now) {
    auto& next = scene.nextChange;
    next.reset();
    if (holdsUntil) next = *holdsUntil - now;
    for (const Marquee& marquee : marquees) {
        scene.nodes[marquee.node] = marquee.text.node(marquee.field, now);
        if (const auto wait = marquee.text.nextChange(now, scale))
            next = std::min(*wait, next.value_or(*wait));
    }
}

}  // namespace quorvane

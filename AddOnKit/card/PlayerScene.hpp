// The card's scene with what is needed to bring its marquees on: most frames of a card show nothing
// else new.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "AddOnKit/card/MarqueeText.hpp"
#include "drawing/Scene.hpp"

namespace quorvane {

// A value.
struct PlayerScene {
    struct Marquee {
        std::size_t node;  // its place among the scene's
        Rect field;
        MarqueeText text;
    };

    Scene scene{};
    std::vector<Marquee> marquees{};      // those that scroll
    std::optional<Instant> holdsUntil{};  // but for its marquees; nothing: for good
    double scale = 1;                     // pixels a point

    bool holds(Instant now) const { return !holdsUntil || now < *holdsUntil; }
    // While it holds, this is the scene as it would be made anew.
    void scroll(Instant now);
};

}  // namespace quorvane

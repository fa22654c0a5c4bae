// The card's scene, with the data that advances its marquees. Most frames of a card change only the
// marquees.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "AddOnKit/card/MarqueeText.hpp"
#include "drawing/Scene.hpp"

namespace quorvane {

// Plain value.
struct PlayerScene {
    struct Marquee {
        std::size_t node;  // index into the scene's nodes
        Rect field;
        MarqueeText text;
    };

    Scene scene{};
    std::vector<Marquee> marquees{};      // the scrolling ones
    std::optional<Instant> holdsUntil{};  // marquees excepted; nullopt: no limit
    double scale = 1;                     // pixels per point

    bool holds(Instant now) const { return !holdsUntil || now < *holdsUntil; }
    // Until holdsUntil, the result equals a newly composed scene.
    void scroll(Instant now);
};

}  // namespace quorvane

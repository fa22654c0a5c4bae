#include "AddOnKit/card/FilledTrack.hpp"

#include "AddOnKit/card/PlayerLayout.hpp"

namespace quorvane {

void drawFilledTrack(Scene& scene, const Rect& track, double filledWidth, double fillOpacity) {
    const double radius = track.height / 2;
    scene.nodes.push_back(ShapeNode{track, radius, Color::white(PlayerLayout::kTrackOpacity)});
    if (filledWidth <= 0) return;

    // A fill shorter than the track's thickness keeps its round end; the track's end clips it.
    const double width = std::max(filledWidth, track.height);
    const double hidden = width - filledWidth;
    const double x = scene.isRightToLeft ? track.maxX() - filledWidth : track.x - hidden;
    const ShapeNode fill{{x, track.y, width, track.height}, radius, Color::white(fillOpacity)};
    if (hidden > 0) scene.nodes.push_back(GroupBegin{.clip = track, .clipCornerRadius = radius});
    scene.nodes.push_back(fill);
    if (hidden > 0) scene.nodes.push_back(GroupEnd{});
}

}  // namespace quorvane

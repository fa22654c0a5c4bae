// A part of the card in which only the scroll positions of text lines change. Most frames change
// only these, so the rest of the part is drawn once.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "drawing/SceneLeaves.hpp"
#include "drawing/pictures/Pixels.hpp"
#include "platform/linux/drawing/CairoHandles.hpp"
#include "platform/linux/drawing/GlyphCoverage.hpp"
#include "platform/linux/drawing/TextLayoutCache.hpp"

namespace quorvane {

// Main thread only.
class ScrollingRegion {
public:
    // Where a scene lies on its stage: points around it, pixels per point.
    struct Place {
        double margin;
        double scale;

        double pixel(double point) const { return (point + margin) * scale; }
        double point(double pixel) const { return pixel / scale - margin; }
    };

    // `draw` returns the part's opaque pixels with another scene. Returns nullopt where no line
    // scrolls, or where other nodes prevent caching.
    static std::optional<ScrollingRegion> make(const Scene& scene, const PixelRect& part,
                                               const Place& place, TextLayoutCache& texts,
                                               const std::function<Pixels(const Scene&)>& draw);

    const PixelRect& part() const { return part_; }
    // Moves the lines to their positions in the scene, in a picture of the whole stage that shows
    // the part already. Each pixel changes from its old value to the new one in a single write.
    // Returns the rows that contain letters; no other rows change. Returns nullopt and draws
    // nothing when the scene differs there in more than scroll positions.
    std::optional<PixelRect> draw(cairo_surface_t* stage, const Scene& scene,
                                  const PixelRect& part) const;

private:
    struct Line {
        std::size_t node;  // index into `nodes_`
        double width;      // points
        int baseline;      // row of the stage
        PixelRect rows;    // of the part, those with letters
        std::shared_ptr<const GlyphCoverage> coverage;
        std::uint32_t color;
        std::vector<std::uint16_t> strengths;
    };
    // A copy of a line at its current position.
    struct Copy {
        const Line* line;
        int x;  // its left edge, from the part's
    };

    ScrollingRegion(const PixelRect& part, const Place& place, bool isRightToLeft)
        : part_(part), place_(place), isRightToLeft_(isRightToLeft) {}
    std::vector<Leaf> leavesIn(const Scene& scene) const;
    bool addLine(std::size_t number, TextLayoutCache& texts);
    std::vector<std::uint16_t> strengthsOf(const TextNode& node) const;
    bool isMadeOf(std::span<const Leaf> leaves) const;
    std::vector<Copy> copiesOf(std::span<const Leaf> leaves) const;
    void drawRow(int y, std::span<const Copy> copies, std::span<std::uint32_t> row) const;

    PixelRect part_;
    Place place_;
    bool isRightToLeft_;
    std::vector<SceneNode> nodes_{};
    std::vector<Line> lines_{};
    PixelRect rows_{};  // of all lines
    Pixels still_{};    // these rows without the lines, padded at their ends
};

}  // namespace quorvane

// A part of the card in which nothing changes but how far lines of text have scrolled. Most frames
// show only that, so what stands still there is drawn once.
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
#include "platform/linux/drawing/LineCoverage.hpp"
#include "platform/linux/drawing/TextLayouts.hpp"

namespace quorvane {

// Main thread only.
class ScrollingPart {
public:
    // Where a scene lies on its stage: points around it, pixels a point.
    struct Place {
        double margin;
        double scale;

        double pixel(double point) const { return (point + margin) * scale; }
        double point(double pixel) const { return pixel / scale - margin; }
    };

    // `draw` gives the part's pixels, opaque ones, as they are with another scene. Nothing where no
    // line scrolls, or where more goes on than can be kept.
    static std::optional<ScrollingPart> make(const Scene& scene, const PixelRect& part,
                                             const Place& place, TextLayouts& texts,
                                             const std::function<Pixels(const Scene&)>& draw);

    const PixelRect& part() const { return part_; }
    // Brings the lines to where the scene has them, in a picture of the whole stage that shows the
    // part already. Every pixel turns from its old value to the new one without a step between.
    // Returns the rows in which there are letters: no other ever changes. Nothing, and nothing is
    // drawn, when there the scene differs in more than how far lines are.
    std::optional<PixelRect> draw(cairo_surface_t* stage, const Scene& scene,
                                  const PixelRect& part) const;

private:
    struct Line {
        std::size_t node;  // its place among `nodes_`
        double width;      // points
        int baseline;      // row of the stage
        PixelRect rows;    // with letters, of the part
        std::shared_ptr<const LineCoverage> coverage;
        std::uint32_t color;
        std::vector<std::uint16_t> strengths;
    };
    // A copy of a line as it stands now.
    struct Copy {
        const Line* line;
        int x;  // of its left edge, from the part's
    };

    ScrollingPart(const PixelRect& part, const Place& place, bool isRightToLeft)
        : part_(part), place_(place), isRightToLeft_(isRightToLeft) {}
    std::vector<Leaf> leavesIn(const Scene& scene) const;
    bool addLine(std::size_t number, TextLayouts& texts);
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
    Pixels still_{};    // these rows without the lines, with room at their ends
};

}  // namespace quorvane

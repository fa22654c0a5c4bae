#include "platform/linux/card/ScrollingRegion.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "drawing/TextPlacement.hpp"

namespace quorvane {
namespace {

const TextNode* scrollingText(const SceneNode& node) {
    const auto* const text = std::get_if<TextNode>(&node);
    return text && text->scroll ? text : nullptr;
}

bool isAlikeButForItsWay(const SceneNode& one, const SceneNode& two) {
    const TextNode* const before = scrollingText(one);
    const TextNode* const after = scrollingText(two);
    if (!before || !after) return one == two;
    return before->frame == after->frame && before->text == after->text &&
           before->font == after->font && before->color == after->color &&
           before->alignment == after->alignment && before->scroll->gap == after->scroll->gap &&
           before->scroll->fade == after->scroll->fade;
}

// Pictures may still be loading, and nodes in a group may move.
bool canBeKept(const Leaf& leaf) {
    return leaf.groups.empty() && !std::holds_alternative<ImageNode>(*leaf.node);
}

std::uint32_t pixelOf(const Color& color) {
    const auto channel = [](double value, int shift) {
        return static_cast<std::uint32_t>(std::lround(value * 255)) << shift;
    };
    return kOpaqueBlack | channel(color.red, 16) | channel(color.green, 8) | channel(color.blue, 0);
}

double strengthAt(double place, std::span<const FadeStop> stops) {
    if (place < 0 || place > 1) return 0;
    const auto after =
        std::ranges::find_if(stops, [&](const FadeStop& stop) { return stop.place >= place; });
    if (after == stops.begin() || after == stops.end()) return 0;
    const auto before = std::prev(after);
    const double way = after->place - before->place;
    const double share = way > 0 ? (place - before->place) / way : 1;
    return before->strength + (after->strength - before->strength) * share;
}

}  // namespace

std::optional<ScrollingRegion> ScrollingRegion::make(
    const Scene& scene, const PixelRect& part, const Place& place, TextLayoutCache& texts,
    const std::function<Pixels(const Scene&)>& draw) {
    if (std::ranges::none_of(scene.nodes, scrollingText)) return std::nullopt;
    ScrollingRegion made{part, place, scene.isRightToLeft};
    Scene still;
    still.isRightToLeft = scene.isRightToLeft;
    for (const Leaf& leaf : made.leavesIn(scene)) {
        // Lines are drawn last here. Only a shape could cover them: symbols and other lines overlap
        // them only with empty margins.
        const bool covers = !made.lines_.empty() && std::holds_alternative<ShapeNode>(*leaf.node);
        if (covers || !canBeKept(leaf)) return std::nullopt;
        made.nodes_.push_back(*leaf.node);
        if (!scrollingText(*leaf.node))
            still.nodes.push_back(*leaf.node);
        else if (!made.addLine(made.nodes_.size() - 1, texts))
            return std::nullopt;
    }
    if (made.rows_.isEmpty()) return std::nullopt;
    const Pixels drawn = draw(still);
    made.still_ = Pixels{part.width + kMixedAtOnce, made.rows_.height};
    copyInto(made.still_, drawn, 0, part.y - made.rows_.y);
    return made;
}

bool ScrollingRegion::isMadeOf(std::span<const Leaf> leaves) const {
    return std::ranges::equal(leaves, nodes_, [](const Leaf& leaf, const SceneNode& node) {
        return canBeKept(leaf) && isAlikeButForItsWay(*leaf.node, node);
    });
}

// The leaves that may paint on the part.
std::vector<Leaf> ScrollingRegion::leavesIn(const Scene& scene) const {
    const Rect area{place_.point(part_.x), place_.point(part_.y), part_.width / place_.scale,
                    part_.height / place_.scale};
    std::vector<Leaf> leaves = leavesOf(scene);
    std::erase_if(leaves, [&](const Leaf& leaf) { return !areaOf(leaf).intersects(area); });
    return leaves;
}

bool ScrollingRegion::addLine(std::size_t number, TextLayoutCache& texts) {
    const TextNode& node = *scrollingText(nodes_[number]);
    const TextLine& line = texts.line(node.text, node.font);
    const auto coverage = GlyphCoverage::of(line, place_.scale);
    if (!coverage) return false;
    const int baseline =
        static_cast<int>(std::lround(place_.pixel(baselineOf(node.frame, line.heights))));
    const PixelRect frame =
        pixelsTouchedBy(scaledBy(node.frame.movedBy(place_.margin, place_.margin), place_.scale));
    const int top = std::max({baseline + coverage->top(), frame.y, part_.y});
    const int bottom = std::min({baseline + coverage->bottom(), frame.maxY(), part_.maxY()});
    const PixelRect rows{part_.x, top, part_.width, bottom - top};
    // `rows` may be empty, because letters outside their frame are not shown.
    if (!rows.isEmpty()) rows_ = rows_.isEmpty() ? rows : unionOf(rows_, rows);
    lines_.push_back(
        {number, line.width, baseline, rows, coverage, pixelOf(node.color), strengthsOf(node)});
    return true;
}

std::vector<std::uint16_t> ScrollingRegion::strengthsOf(const TextNode& node) const {
    const auto stops = fadeStops(node);
    std::vector<std::uint16_t> strengths(static_cast<std::size_t>(part_.width + kMixedAtOnce));
    for (std::size_t i = 0; i < strengths.size(); ++i) {
        const double middle = place_.point(part_.x + static_cast<double>(i) + 0.5);
        const double strength = strengthAt((middle - node.frame.x) / node.frame.width, stops);
        strengths[i] = static_cast<std::uint16_t>(std::lround(strength * node.color.alpha * 256));
    }
    return strengths;
}

std::vector<ScrollingRegion::Copy> ScrollingRegion::copiesOf(std::span<const Leaf> leaves) const {
    std::vector<Copy> copies;
    for (const Line& line : lines_) {
        const TextNode& node = *scrollingText(*leaves[line.node].node);
        const auto pixel = [&](double x) { return std::round(place_.pixel(x)); };
        // The resting place is rounded separately, so that frames timed for whole pixels of
        // scrolling move by whole pixels.
        const double rest = place_.point(pixel(leftEdgeOf(node, line.width, isRightToLeft_)));
        for (const double left : quorvane::copiesOf(node, rest, line.width, isRightToLeft_))
            copies.push_back({&line, static_cast<int>(pixel(left)) - part_.x});
    }
    return copies;
}

void ScrollingRegion::drawRow(int y, std::span<const Copy> copies,
                              std::span<std::uint32_t> row) const {
    std::copy_n(still_.row(y - rows_.y), still_.width, row.data());
    for (const auto& [line, x] : copies)
        if (y >= line->rows.y && y < line->rows.maxY())
            line->coverage->mixInto(row, line->strengths, line->color, x, y - line->baseline);
}

std::optional<PixelRect> ScrollingRegion::draw(cairo_surface_t* stage, const Scene& scene,
                                               const PixelRect& part) const {
    if (part != part_ || scene.isRightToLeft != isRightToLeft_) return std::nullopt;
    const std::vector<Leaf> leaves = leavesIn(scene);
    if (!isMadeOf(leaves)) return std::nullopt;
    const std::vector<Copy> copies = copiesOf(leaves);
    cairo_surface_flush(stage);
    unsigned char* const data = cairo_image_surface_get_data(stage);
    const std::ptrdiff_t stride = cairo_image_surface_get_stride(stage);
    std::vector<std::uint32_t> row(static_cast<std::size_t>(still_.width));
    for (int y = rows_.y; y < rows_.maxY(); ++y) {
        drawRow(y, copies, row);
        std::copy_n(row.data(), rows_.width,
                    reinterpret_cast<std::uint32_t*>(data + y * stride) + rows_.x);
    }
    cairo_surface_mark_dirty_rectangle(stage, rows_.x, rows_.y, rows_.width, rows_.height);
    return rows_;
}

}  // namespace quorvane

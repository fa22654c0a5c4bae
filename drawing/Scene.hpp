// The look of the card at one moment, as a value: a flat list of nodes to draw from back to front,
// the controls, and the time of the next change. Coordinates are points inside the card, origin at
// its top left, y growing downward. A node paints only inside its frame.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "drawing/Geometry.hpp"
#include "drawing/Image.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    static constexpr Color white(double alpha = 1) { return {1, 1, 1, alpha}; }
    static constexpr Color black(double alpha = 1) { return {0, 0, 0, alpha}; }
    constexpr bool operator==(const Color&) const = default;
};

struct FontStyle {
    enum class Weight { regular, medium, semibold, bold };
    double size = 13;
    Weight weight = Weight::regular;
    bool hasTabularDigits = false;  // every digit as wide as the widest

    constexpr bool operator==(const FontStyle&) const = default;
};

// The width of one line of text in points, as it will be drawn. Main thread.
using MeasureText = std::function<double(const std::string& text, const FontStyle& font)>;

enum class TextAlignment {
    leading,
    center,
    trailing
};  // leading is the right edge in a right-to-left scene

// A filled rectangle, rounded if the radius is above 0. A radius of half the shorter side makes
// round ends.
struct ShapeNode {
    Rect frame{};
    double cornerRadius = 0;
    Color fill{};
    double edgeWidth = 0;  // above 0: only an edge of this width is filled
    bool operator==(const ShapeNode&) const = default;
};

// Fills its frame, cropped around the centre where the proportions differ.
struct ImageNode {
    Rect frame{};
    double cornerRadius = 0;
    ImageRef image{};
    bool operator==(const ImageNode&) const = default;
};

// One line. Text wider than its frame is cut off with an ellipsis at its trailing end, unless
// `scroll` is set.
struct TextNode {
    // One cycle: rests, then moves the text until its copy is where the text began.
    struct Motion {
        double rest = 0;   // seconds
        double speed = 0;  // points per second
        bool operator==(const Motion&) const = default;
    };
    // The text starts at its aligned edge, moved `offset` points beyond it. A copy
    // follows after `gap` points. Both ends of the frame fade over `fade` points. With a motion
    // the stage moves both from there, repeatedly, for as long as its scenes have this node.
    struct Scroll {
        double offset = 0;
        double gap = 0;
        double fade = 0;
        std::optional<Motion> motion{};
        bool operator==(const Scroll&) const = default;
    };

    Rect frame{};  // the line is centred vertically
    std::string text{};
    FontStyle font{};
    Color color{};
    TextAlignment alignment = TextAlignment::leading;
    std::optional<Scroll> scroll{};
    bool operator==(const TextNode&) const = default;
};

// A symbol by name, centred in its frame.
struct SymbolNode {
    Rect frame{};
    std::string_view name{};  // a string literal such as "play.fill"
    double pointSize = 0;
    Color color{};

    // Whether right-to-left scenes mirror it: it points to or from its neighbour. A player's arrows
    // point along time, which has the same direction everywhere.
    bool facesTextDirection() const { return name.starts_with("speaker."); }
    bool operator==(const SymbolNode&) const = default;
};

// Everything up to the matching GroupEnd is drawn with this transform, opacity and clip. Groups
// nest.
struct GroupBegin {
    Transform transform{};
    double opacity = 1;
    std::optional<Rect> clip{};
    double clipCornerRadius = 0;
    bool operator==(const GroupBegin&) const = default;
};
struct GroupEnd {
    bool operator==(const GroupEnd&) const = default;
};

using SceneNode = std::variant<ShapeNode, ImageNode, TextNode, SymbolNode, GroupBegin, GroupEnd>;

// A part of the card that can be operated or read by a screen reader.
struct SceneControl {
    enum class ID {
        previous,
        playPause,
        next,
        love,
        volume,
        title,
        artist,
        artwork,
        progress,
        remaining
    };
    enum class Role { button, slider, text, image, progress };

    ID id;
    Role role;
    Rect frame{};         // the area that takes presses; for texts and images, their place
    std::string label{};  // localised; empty for texts
    std::string value{};  // localised; of texts: the text; empty when it has none
    double number = 0;    // of sliders and progress, between the two below
    double minimum = 0;
    double maximum = 0;
    double step = 0;  // of sliders: one increment or decrement by assistive technology
    bool operator==(const SceneControl&) const = default;
};

struct Scene {
    std::vector<SceneNode> nodes;
    std::vector<SceneControl> controls;
    std::string label{};  // of the card as a whole, localised
    bool isRightToLeft = false;
    // How long this scene stays valid without other events; nullopt: indefinitely. Not drawn, so
    // not compared.
    std::optional<Duration> nextChange;

    bool operator==(const Scene& other) const {
        return nodes == other.nodes && controls == other.controls && label == other.label &&
               isRightToLeft == other.isRightToLeft;
    }
};

}  // namespace quorvane

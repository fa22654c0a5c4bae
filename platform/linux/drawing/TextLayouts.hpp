// Lines of text, laid out with the system's fonts and kept for the next scene.
#pragma once

#include <pango/pango.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "drawing/Canvas.hpp"
#include "drawing/RecentLines.hpp"
#include "drawing/Scene.hpp"
#include "drawing/TextPlacement.hpp"
#include "platform/linux/drawing/CairoHandles.hpp"

namespace quorvane {

class LineCoverage;

// A line with letters in colours of their own, drawn once, to be shown again at other places.
struct TextPicture {
    CairoSurface surface{};
    Color color{};     // of its other letters, opaque
    double scale = 0;  // pixels a point
};

// One laid-out line. Lengths are points and the same at every scale.
struct TextLine {
    GObjectOwner<PangoLayout> layout;
    double width = 0;
    // Of the font, not of these letters: lines of one font share a baseline.
    LineHeights heights{};
    // Kept by whoever draws the line, as long as the line is: one of these.
    mutable std::shared_ptr<const LineCoverage> coverage{};
    mutable TextPicture picture{};
};

// Main thread only. References stay valid until the next call.
class TextLayouts {
public:
    // A list of font families in order of preference, as fontconfig takes it.
    explicit TextLayouts(std::string families = kSystemFont);

    // The line as long as it is, or cut off with an ellipsis where it is wider than `fit` points.
    const TextLine& line(const std::string& text, const FontStyle& font,
                         std::optional<double> fit = std::nullopt);

    // The desktop's interface font where fontconfig knows one, then the one the card was drawn
    // with.
    static constexpr char kSystemFont[] = "system-ui,Inter,sans";

private:
    struct FontHeights {
        FontStyle font;
        LineHeights heights;
    };

    TextLine layOut(const std::string& text, const FontStyle& font, std::optional<double> fit);
    LineHeights heightsOf(const FontStyle& font, const PangoFontDescription* description);

    std::string families_;
    GObjectOwner<PangoContext> context_;
    // Asking for them takes longer than to lay out a time. A card has three fonts.
    std::vector<FontHeights> heights_;
    RecentLines<TextLine> recent_;
};

// Measures with layouts of its own.
MeasureText makeMeasureText(std::string families = TextLayouts::kSystemFont);

}  // namespace quorvane

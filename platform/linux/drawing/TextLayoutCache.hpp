// A cache of text lines laid out with the system's fonts.
#pragma once

#include <pango/pango.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "drawing/LineCache.hpp"
#include "drawing/Scene.hpp"
#include "drawing/TextPlacement.hpp"
#include "platform/linux/drawing/TextDrawing.hpp"

namespace quorvane {

// One laid-out line. Lengths are points and the same at every scale.
struct TextLine {
    GObjectOwner<PangoLayout> layout;
    double width = 0;
    // Of the font, not of these letters, so that lines of one font share a baseline.
    LineHeights heights{};
    mutable LinePixels pixels{};  // of its last drawing
};

// Main thread only. References stay valid until the next call.
class TextLayoutCache {
public:
    // A list of font families in order of preference, as fontconfig takes it.
    explicit TextLayoutCache(std::string families = kSystemFont);

    // The line at its full length, or cut off with an ellipsis where it is wider than `fit` points.
    const TextLine& line(const std::string& text, const FontStyle& font,
                         std::optional<double> fit = std::nullopt);

    // The desktop's interface font if fontconfig knows it, then the font the card was designed
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
    // Cached, because querying them takes longer than laying out a short text. A card has three
    // fonts.
    std::vector<FontHeights> heights_;
    LineCache<TextLine> recent_;
};

// The measure function owns its layouts.
MeasureText makeMeasureText(std::string families = TextLayoutCache::kSystemFont);

}  // namespace quorvane

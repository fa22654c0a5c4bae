// Cache of text lines laid out by Core Text. For Objective-C++ only.
#pragma once

#import <CoreText/CoreText.h>

#include <optional>
#include <string>

#include "drawing/LineCache.hpp"
#include "drawing/TextPlacement.hpp"
#include "platform/macos/foundation/CFHandle.hpp"

namespace quorvane {

// One laid-out line, drawn in the context's fill colour. Lengths are points.
struct TextLine {
    CFHandle<CTLineRef> line{};
    double width = 0;
    LineHeights heights{};  // of the font, not of this text
};

// Main thread only. References stay valid until the next call.
class TextLinesMacOS {
public:
    // The whole line or, if it is wider than `fit` points, the line truncated with an ellipsis.
    const TextLine& line(const std::string& text, const FontStyle& font,
                         std::optional<double> fit = std::nullopt);

private:
    LineCache<TextLine> recent_;
};

}  // namespace quorvane

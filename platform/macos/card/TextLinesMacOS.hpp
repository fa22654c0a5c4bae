// Lines of text, laid out by Core Text and kept for the next scene. For Objective-C++ only.
#pragma once

#import <CoreText/CoreText.h>

#include <optional>
#include <string>

#include "drawing/Canvas.hpp"
#include "drawing/RecentLines.hpp"
#include "drawing/TextPlacement.hpp"
#include "platform/macos/foundation/CFHandle.hpp"

namespace quorvane {

// One laid-out line, drawn in the context's fill colour. Lengths are points.
struct TextLine {
    CFHandle<CTLineRef> line{};
    double width = 0;
    LineHeights heights{};  // of the font, not of these letters
};

// Main thread only. References stay valid until the next call.
class TextLinesMacOS {
public:
    // The line as long as it is, or cut off with an ellipsis where it is wider than `fit` points.
    const TextLine& line(const std::string& text, const FontStyle& font,
                         std::optional<double> fit = std::nullopt);

private:
    RecentLines<TextLine> recent_;
};

}  // namespace quorvane

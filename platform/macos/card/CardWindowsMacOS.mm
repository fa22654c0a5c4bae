#include "platform/macos/card/CardMacOS.hpp"

#import <AppKit/AppKit.h>

#include "platform/macos/card/CardWindowMacOS.hpp"
#include "platform/macos/card/TextLinesMacOS.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {

CardWindows makeCardWindowsMacOS(const Clock& clock) {
    return {
        .makeWindow =
            [clock](const CardPlace& place, const Screen&) {
                return std::make_unique<CardWindowMacOS>(place.frame, clock);
            },
        .makeStage = [](const CardStyle& style) { return std::make_shared<CardStageMacOS>(style); },
        .reducesMotion =
            [] { return NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion; },
        .measureText = [lines = std::make_shared<TextLinesMacOS>()](
                           const std::string& text,
                           const FontStyle& font) { return lines->line(text, font).width; },
        // The text and its copy are one layer, which must fit into a texture.
        .widestMovedText = 8000,
    };
}

}  // namespace quorvane

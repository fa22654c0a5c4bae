#include "platform/macos/card/SymbolImages.hpp"

#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

NSImage* makeImage(const SymbolNode& symbol) {
    const Color& color = symbol.color;
    NSColor* const tint = [NSColor colorWithSRGBRed:color.red
                                              green:color.green
                                               blue:color.blue
                                              alpha:color.alpha];
    // One colour for all layers, because a hierarchical configuration would make some fainter.
    NSImageSymbolConfiguration* const size =
        [NSImageSymbolConfiguration configurationWithPointSize:symbol.pointSize
                                                        weight:NSFontWeightRegular];
    NSImageSymbolConfiguration* const look =
        [size configurationByApplyingConfiguration:[NSImageSymbolConfiguration
                                                       configurationWithPaletteColors:@[ tint ]]];
    // No description here, because the card's controls describe the symbol.
    NSImage* const plain = [NSImage imageWithSystemSymbolName:stringFrom(symbol.name)
                                     accessibilityDescription:nil];
    return [plain imageWithSymbolConfiguration:look];
}

}  // namespace

NSImage* SymbolImages::image(const SymbolNode& symbol) {
    const Color& color = symbol.color;
    const Key key{symbol.name, symbol.pointSize, color.red, color.green, color.blue, color.alpha};
    auto found = images_.find(key);
    if (found == images_.end()) found = images_.emplace(key, makeImage(symbol)).first;
    return found->second;
}

}  // namespace quorvane

// Cache of the system's symbols in the sizes and colours drawn. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include <map>
#include <string_view>
#include <tuple>

#include "drawing/Scene.hpp"

namespace quorvane {

// Main thread only. Drops no entry, because a card's symbols have few sizes and colours.
class SymbolImages {
public:
    // Returns nil for an unknown symbol name.
    NSImage* image(const SymbolNode& symbol);

private:
    using Key = std::tuple<std::string_view, double, double, double, double, double>;
    std::map<Key, NSImage*> images_;
};

}  // namespace quorvane

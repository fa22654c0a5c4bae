// The system's symbols in the sizes and colours that were drawn lately. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include <map>
#include <string_view>
#include <tuple>

#include "drawing/Scene.hpp"

namespace quorvane {

// Main thread only. A card's symbols come in few sizes and colours, so none is ever dropped.
class SymbolImages {
public:
    // Nil for a name that the system does not know.
    NSImage* image(const SymbolNode& symbol);

private:
    using Key = std::tuple<std::string_view, double, double, double, double, double>;
    std::map<Key, NSImage*> images_;
};

}  // namespace quorvane

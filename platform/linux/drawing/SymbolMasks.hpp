// Symbols drawn lately, to be shown again: filling their outlines takes far longer.
#pragma once

#include <list>
#include <string_view>

#include "drawing/Scene.hpp"
#include "platform/linux/drawing/CairoHandles.hpp"

namespace quorvane {

// Main thread only.
class SymbolMasks {
public:
    // As `drawSymbol`. Kept is what is upright and stands on whole pixels.
    void draw(cairo_t* cairo, const SymbolNode& symbol, bool isRightToLeft);

private:
    struct Key {
        std::string_view name;
        double pointSize;
        Size frame;    // points
        double scale;  // pixels a point
        bool isRightToLeft;
        bool operator==(const Key&) const = default;
    };
    struct Entry {
        Key key;
        CairoSurface mask;
    };

    cairo_surface_t* maskOf(const Key& key);

    std::list<Entry> recent_;  // the last used one first
};

}  // namespace quorvane

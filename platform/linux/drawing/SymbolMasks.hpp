// A cache of recently drawn symbols, because filling their outlines takes far longer.
#pragma once

#include <list>
#include <string_view>

#include "drawing/Scene.hpp"
#include "platform/linux/drawing/CairoHandles.hpp"

namespace quorvane {

// Main thread only.
class SymbolMasks {
public:
    // As `drawSymbol`. Caches only upright symbols on whole pixels.
    void draw(cairo_t* cairo, const SymbolNode& symbol, bool isRightToLeft);

private:
    struct Key {
        std::string_view name;
        double pointSize;
        Size frame;    // points
        double scale;  // pixels per point
        bool isRightToLeft;
        bool operator==(const Key&) const = default;
    };
    struct Entry {
        Key key;
        CairoSurface mask;
    };

    cairo_surface_t* maskOf(const Key& key);

    std::list<Entry> recent_;  // most recently used first
};

}  // namespace quorvane

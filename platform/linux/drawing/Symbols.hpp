// The card's symbols as our own outlines, in one family: the same pen, the same round joins.
#pragma once

#include <list>
#include <string_view>

#include "drawing/Scene.hpp"
#include "platform/linux/drawing/CairoHandles.hpp"

namespace quorvane {

// Caches drawn symbols, because filling outlines takes far longer than copying. Main thread only.
class Symbols {
public:
    // Draws nothing for an unknown name. Symbols that point to or from their neighbour are mirrored
    // in right-to-left scenes. The context is scaled and moved, but not rotated.
    void draw(cairo_t* cairo, const SymbolNode& node, bool isRightToLeft);

private:
    struct Key {
        std::string_view name;
        double pixelSize;
        Rect frame;  // in the mask's pixels
        bool isMirrored;
        bool operator==(const Key&) const = default;
    };
    struct Entry {
        Key key;
        CairoSurface mask;
    };

    cairo_surface_t* maskOf(const Key& key);  // null for an unknown name

    std::list<Entry> recent_;  // most recently used first
};

}  // namespace quorvane

// The card's symbols as our own outlines, in one family: the same pen, the same round joins.
#pragma once

#include <cairo.h>

#include <string_view>
#include <vector>

#include "drawing/Scene.hpp"

namespace quorvane {

// Returns false and draws nothing for an unknown name. Symbols that point to or from their
// neighbour are mirrored in right-to-left scenes.
bool drawSymbol(cairo_t* cairo, const SymbolNode& symbol, bool isRightToLeft);

std::vector<std::string_view> symbolNames();

}  // namespace quorvane

// The symbols of the card as outlines of our own, one family: the same pen, the same round joins.
#pragma once

#include <cairo.h>

#include <string_view>
#include <vector>

#include "drawing/Scene.hpp"

namespace quorvane {

// False, with nothing drawn, for a name that is not in the family. Symbols that point to or from
// what stands beside them face the other way from right to left.
bool drawSymbol(cairo_t* cairo, const SymbolNode& symbol, bool isRightToLeft);

std::vector<std::string_view> symbolNames();

}  // namespace quorvane

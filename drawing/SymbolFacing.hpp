// The rule for symbols that are mirrored in right-to-left scenes.
#pragma once

#include <string_view>

namespace quorvane {

// True for symbols that point to or from their neighbour. A player's arrows point along time, which
// has the same direction everywhere.
constexpr bool facesTextDirection(std::string_view symbol) {
    return symbol == "speaker.fill" || symbol == "speaker.wave.3.fill";
}

}  // namespace quorvane

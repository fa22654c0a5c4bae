// Which symbols are mirrored where text runs from right to left.
#pragma once

#include <string_view>

namespace quorvane {

// Those that point to or from what stands beside them. Arrows of a player point along time, which
// runs the same way everywhere.
constexpr bool facesTextDirection(std::string_view symbol) {
    return symbol == "speaker.fill" || symbol == "speaker.wave.3.fill";
}

}  // namespace quorvane

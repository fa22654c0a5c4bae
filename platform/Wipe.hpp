// Overwrites secret bytes in a way that the compiler must carry out.
#pragma once

#include <cstddef>
#include <span>

namespace quorvane {

// Stores to memory that nobody reads any more may be left out; volatile ones may not.
inline void wipe(std::span<std::byte> bytes) {
    volatile std::byte* place = bytes.data();
    for (std::size_t left = bytes.size(); left > 0; --left) *place++ = std::byte{0};
}

}  // namespace quorvane

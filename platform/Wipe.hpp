// Erasure of secret bytes that the compiler cannot optimise away.
#pragma once

#include <cstddef>
#include <span>

namespace quorvane {

// The compiler may drop stores to memory that is not read again, but not volatile stores.
inline void wipe(std::span<std::byte> bytes) {
    volatile std::byte* place = bytes.data();
    for (std::size_t left = bytes.size(); left > 0; --left) *place++ = std::byte{0};
}

}  // namespace quorvane

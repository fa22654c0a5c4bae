// Byte buffers whose growth does not zero the new bytes, because replies of a megabyte are read
// directly into them.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace quorvane {

// std::allocator, except that value-less construction leaves the memory as it is.
template <typename T>
struct UninitializedAllocator : std::allocator<T> {
    template <typename U>
    struct rebind {
        using other = UninitializedAllocator<U>;
    };
    template <typename U>
    void construct(U* place) noexcept {
        ::new (static_cast<void*>(place)) U;
    }
    template <typename U, typename... Arguments>
    void construct(U* place, Arguments&&... arguments) {
        ::new (static_cast<void*>(place)) U(std::forward<Arguments>(arguments)...);
    }
};

using Bytes = std::vector<std::byte, UninitializedAllocator<std::byte>>;
using ByteView = std::span<const std::byte>;

inline ByteView bytesOf(std::string_view text) {
    return std::as_bytes(std::span{text.data(), text.size()});
}

inline std::string_view textOf(ByteView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Appends with one memcpy, because the vector with this allocator copies byte by byte.
inline void append(Bytes& bytes, ByteView more) {
    if (more.empty()) return;
    const std::size_t before = bytes.size();
    bytes.resize(before + more.size());
    std::memcpy(bytes.data() + before, more.data(), more.size());
}

inline Bytes copyOf(ByteView bytes) {
    Bytes copy;
    append(copy, bytes);
    return copy;
}

}  // namespace quorvane

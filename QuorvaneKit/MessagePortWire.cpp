#include "QuorvaneKit/MessagePortWire.hpp"

#include <array>
#include <cstdint>
#include <cstring>

namespace quorvane {
namespace {

// Both are kSecretLength long. No early exit: the time must not tell how much of a guess is right.
bool isSameSecret(ByteView left, ByteView right) {
    using Words = std::array<std::uint64_t, MessagePortWire::kSecretLength / 8>;
    Words one;
    Words other;
    std::memcpy(one.data(), left.data(), sizeof one);
    std::memcpy(other.data(), right.data(), sizeof other);
    std::uint64_t difference = 0;
    for (std::size_t i = 0; i < one.size(); ++i) difference |= one[i] ^ other[i];
    // Through a volatile, so that the decision cannot be moved into the loop.
    const volatile std::uint64_t decided = difference;
    return decided == 0;
}

}  // namespace

std::optional<ByteView> MessagePortWire::unwrap(ByteView framed, ByteView expectedSecret) {
    if (expectedSecret.size() != kSecretLength || framed.size() < kSecretLength)
        return std::nullopt;
    std::optional<ByteView> payload{framed.subspan(kSecretLength)};
    if (!isSameSecret(framed.first(kSecretLength), expectedSecret)) payload.reset();
    return payload;
}

}  // namespace quorvane

#include "QuorvaneKit/link/MessagePortWire.hpp"

namespace quorvane {
namespace {

// Both are kSecretLength long. No early exit, because the time must not reveal how much of a guess
// is right. No copies, because they would stay on the stack.
bool isSameSecret(ByteView left, ByteView right) {
    std::byte difference{};
    for (std::size_t i = 0; i < MessagePortWire::kSecretLength; ++i)
        difference |= left[i] ^ right[i];
    // Volatile, so that the compiler cannot move the decision into the loop.
    const volatile std::byte decided = difference;
    return decided == std::byte{};
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

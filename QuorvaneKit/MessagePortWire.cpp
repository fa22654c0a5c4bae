#include "QuorvaneKit/MessagePortWire.hpp"

#include <algorithm>

#include "platform/Wipe.hpp"

namespace quorvane {
namespace {

// Both are kSecretLength long. No early exit: the time must not tell how much of a guess is right.
bool isSameSecret(ByteView left, ByteView right) {
    std::byte difference{0};
    for (std::size_t i = 0; i < MessagePortWire::kSecretLength; ++i)
        difference |= left[i] ^ right[i];
    // Through a volatile, so that the decision cannot be moved into the loop.
    const volatile std::byte decided = difference;
    return decided == std::byte{0};
}

}  // namespace

std::optional<Bytes> MessagePortWire::wrap(ByteView payload, ByteView secret, Bytes buffer) {
    if (secret.size() != kSecretLength) return std::nullopt;
    buffer.clear();
    buffer.reserve(kSecretLength + payload.size());
    append(buffer, secret);
    append(buffer, payload);
    return buffer;
}

std::optional<ByteView> MessagePortWire::unwrap(ByteView framed, ByteView expectedSecret) {
    if (expectedSecret.size() != kSecretLength || framed.size() < kSecretLength)
        return std::nullopt;
    if (!isSameSecret(framed.first(kSecretLength), expectedSecret)) return std::nullopt;
    return framed.subspan(kSecretLength);
}

void MessagePortWire::wipeSecret(Bytes& framed) {
    wipe(std::span{framed}.first(std::min(framed.size(), kSecretLength)));
}

}  // namespace quorvane

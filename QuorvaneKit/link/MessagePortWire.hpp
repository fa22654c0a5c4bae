// The framing of a request: the connection secret, then the payload. Pure functions, any thread.
#pragma once

#include <optional>

#include "platform/Bytes.hpp"

namespace quorvane {

struct MessagePortWire {
    static constexpr std::size_t kSecretLength = 32;

    // The payload, a part of `framed`; nothing when the secret in front of it is not the expected
    // one, or either is of a wrong length. Takes the same time wherever the first difference lies.
    static std::optional<ByteView> unwrap(ByteView framed, ByteView expectedSecret);
};

}  // namespace quorvane

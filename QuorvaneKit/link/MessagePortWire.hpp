// The framing of a request: the connection secret, then the payload. Pure functions, any thread.
#pragma once

#include <optional>

#include "platform/Bytes.hpp"

namespace quorvane {

struct MessagePortWire {
    static constexpr std::size_t kSecretLength = 32;

    // Returns the payload, a part of `framed`. Returns nullopt when either length or the
    // secret is wrong. Takes the same time wherever the first difference is.
    static std::optional<ByteView> unwrap(ByteView framed, ByteView expectedSecret);
};

}  // namespace quorvane

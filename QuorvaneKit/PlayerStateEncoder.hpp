// Encodes player states as they are asked for from poll to poll.
#pragma once

#include <optional>

#include "QuorvaneKit/CodingError.hpp"
#include "QuorvaneKit/QuorvanePlayerState.hpp"
#include "platform/Bytes.hpp"

namespace quorvane {

// Encodes exactly as XPCCodableHelpers does. The base64 text of the last state's artwork is kept
// and copied when the same artwork comes again. One thread at a time.
class PlayerStateEncoder {
public:
    CodingResult<Bytes> encode(const QuorvanePlayerState& state);

private:
    struct Artwork {
        SharedBytes bytes;
        Bytes text;
    };
    std::optional<Artwork> last_;
};

}  // namespace quorvane

// Encoder for successive player states.
#pragma once

#include <optional>

#include "QuorvaneKit/json/CodingError.hpp"
#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "platform/MessagePort.hpp"

namespace quorvane {

// Encodes exactly as XPCCodableHelpers does, in one or more parts. Keeps the base64 text of the
// last state's artwork and shares it with every reply that has the same artwork. One thread at a
// time.
class PlayerStateEncoder {
public:
    CodingResult<PortAnswer> encode(const QuorvanePlayerState& state);

private:
    struct Artwork {
        SharedBytes bytes;
        std::shared_ptr<const Bytes> text;
    };
    std::optional<Artwork> last_;
};

}  // namespace quorvane

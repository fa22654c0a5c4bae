// Encodes player states as they are asked for from poll to poll.
#pragma once

#include <optional>

#include "QuorvaneKit/json/CodingError.hpp"
#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "platform/MessagePort.hpp"

namespace quorvane {

// Encodes exactly as XPCCodableHelpers does, in one or more parts. The base64 text of the last
// state's artwork is kept, and is part of every reply with the same artwork. One thread at a time.
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

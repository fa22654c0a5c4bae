// Decoder for successive player states, most of which repeat the last one's artwork.
#pragma once

#include <optional>
#include <string_view>

#include "QuorvaneKit/json/CodingError.hpp"
#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "platform/Bytes.hpp"

namespace quorvane {

// Decodes exactly as XPCCodableHelpers does. Artwork with the same text as in the last good reply
// is returned as the same object, not decoded or copied again. For that purpose the decoder keeps
// the reply with the artwork until one arrives with other artwork or none. One thread at a time.
class PlayerStateDecoder {
public:
    // May exchange the contents of `reply` for memory of an earlier one.
    CodingResult<QuorvanePlayerState> decode(Bytes& reply);

private:
    struct Artwork {
        Bytes reply;
        std::string_view text;  // within `reply`, between its quotes
        SharedBytes bytes;
    };
    struct Lifted;

    std::optional<Lifted> liftArtwork(std::string_view reply) const;

    std::optional<Artwork> last_;
};

}  // namespace quorvane

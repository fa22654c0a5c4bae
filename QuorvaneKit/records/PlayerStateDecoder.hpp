// Decodes player states as they come from poll to poll, most of them with the artwork of the last.
#pragma once

#include <optional>
#include <string_view>

#include "QuorvaneKit/json/CodingError.hpp"
#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "platform/Bytes.hpp"

namespace quorvane {

// Decodes exactly as XPCCodableHelpers does. Artwork whose text is that of the last good reply is
// handed out as the same object, neither decoded nor copied again. For that the decoder keeps the
// reply in which the artwork came, until one comes with another or with none. One thread at a time.
class PlayerStateDecoder {
public:
    // Takes what is in `reply`; what is there afterwards is memory to be used again.
    CodingResult<QuorvanePlayerState> decode(Bytes& reply);

private:
    struct Artwork {
        Bytes reply;
        std::string_view text;  // within `reply`, between its quotes
        SharedBytes bytes;
    };
    struct Lifted;

    std::optional<Lifted> liftArtwork(std::string_view reply) const;
    CodingResult<QuorvanePlayerState> decodeAround(const Lifted& lifted, Bytes& reply);

    std::optional<Artwork> last_;
};

}  // namespace quorvane

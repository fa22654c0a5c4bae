#include "QuorvaneKit/PlayerStateEncoder.hpp"

#include "QuorvaneKit/Base64.hpp"
#include "QuorvaneKit/RecordCoding.hpp"

namespace quorvane {

CodingResult<Bytes> PlayerStateEncoder::encode(const QuorvanePlayerState& state) {
    // Room for everything but the longest titles: growing would move the artwork.
    constexpr std::size_t kRoomForTheRest = 4096;
    const bool hasArtwork = state.track && state.track->artworkData;
    if (!hasArtwork) last_.reset();
    Bytes text;
    text.reserve(kRoomForTheRest +
                 (hasArtwork ? base64Length(state.track->artworkData->size()) : 0));
    return coding::writeRecord(state, std::move(text), [&](Bytes& out, const SharedBytes& artwork) {
        if (!last_ || !(last_->bytes == artwork)) {
            Bytes base64;
            appendBase64(base64, artwork.view());
            last_ = Artwork{artwork, std::move(base64)};
        }
        append(out, last_->text);
    });
}

}  // namespace quorvane

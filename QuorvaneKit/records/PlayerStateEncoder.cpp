#include "QuorvaneKit/records/PlayerStateEncoder.hpp"

#include "QuorvaneKit/json/Base64.hpp"
#include "QuorvaneKit/records/RecordCoding.hpp"

namespace quorvane {

CodingResult<PortAnswer> PlayerStateEncoder::encode(const QuorvanePlayerState& state) {
    PortAnswer answer;
    if (!state.track || !state.track->artworkData) last_.reset();
    auto text = coding::writeRecord(state, [&](Bytes& written, const SharedBytes& artwork) {
        if (!last_ || !(last_->bytes == artwork)) {
            Bytes base64;
            appendBase64(base64, artwork.view());
            last_ = Artwork{artwork, std::make_shared<const Bytes>(std::move(base64))};
        }
        answer.shared = last_->text;
        answer.place = written.size();
    });
    if (!text) return std::unexpected{text.error()};
    answer.bytes = *std::move(text);
    return answer;
}

}  // namespace quorvane

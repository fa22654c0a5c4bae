#include "QuorvaneKit/PlayerStateDecoder.hpp"

#include "QuorvaneKit/Base64.hpp"
#include "QuorvaneKit/RecordCoding.hpp"

namespace quorvane {
namespace {

// The key as encoders without white space write it, and the quote that opens its value.
//
// Wherever this stands in text that is JSON, its last quote opens a value: its first quote either
// opens the key or, escaped, is part of one that its second quote closes. Were the first quote the
// end of a string, the letter after it would not be JSON, with or without the value.
constexpr std::string_view kArtworkOpening = "\"artworkData\":\"";

Bytes without(std::string_view reply, std::size_t begin, std::size_t length) {
    constexpr std::size_t kRoomForTheReader = 64;
    const ByteView bytes = bytesOf(reply);
    Bytes rest;
    rest.reserve(bytes.size() - length + kRoomForTheReader);
    append(rest, bytes.first(begin));
    append(rest, bytes.subspan(begin + length));
    return rest;
}

}  // namespace

// Artwork taken out of a reply's text before the rest is parsed: it is nearly all of the text, and
// looking at it once is enough.
struct PlayerStateDecoder::Lifted {
    std::size_t begin;  // of the text between its quotes
    std::size_t length;
    SharedBytes bytes;
    bool isLast;
};

CodingResult<QuorvanePlayerState> PlayerStateDecoder::decode(Bytes reply) {
    const auto lifted = liftArtwork(textOf(reply));
    auto state = lifted ? decodeAround(*lifted, std::move(reply)) : decodeWhole(std::move(reply));
    if (state && !(state->track && state->track->artworkData)) last_.reset();
    return state;
}

// Nothing when the reply has no artwork, or has it in a form that the parser must see.
std::optional<PlayerStateDecoder::Lifted> PlayerStateDecoder::liftArtwork(
    std::string_view reply) const {
    const std::size_t opening = reply.find(kArtworkOpening);
    if (opening == std::string_view::npos) return std::nullopt;
    const std::size_t begin = opening + kArtworkOpening.size();
    const std::string_view text = reply.substr(begin);
    if (last_ && text.starts_with(last_->text) && text.substr(last_->text.size()).starts_with('"'))
        return Lifted{begin, last_->text.size(), last_->bytes, true};
    // What decodes has no escape but "\/" in it, hence the first quote is where the string ends.
    const std::size_t length = text.find('"');
    if (length == std::string_view::npos) return std::nullopt;
    auto bytes = decodeBase64(text.substr(0, length), Base64Form::escapedSolidus);
    if (!bytes) return std::nullopt;
    return Lifted{begin, length, SharedBytes{*std::move(bytes)}, false};
}

CodingResult<QuorvanePlayerState> PlayerStateDecoder::decodeAround(const Lifted& lifted,
                                                                   Bytes reply) {
    JSONText rest{without(textOf(reply), lifted.begin, lifted.length)};
    const char* const place = rest.data() + lifted.begin;
    bool isInTrack = false;
    auto state = coding::readRecord<QuorvanePlayerState>(rest, [&](std::string_view text) {
        // The key may have stood elsewhere, in an object that is not asked for.
        if (text.data() != place) return readBase64(text);
        isInTrack = true;
        return std::optional{lifted.bytes};
    });
    if (state && isInTrack && !lifted.isLast) {
        const std::string_view text = textOf(reply).substr(lifted.begin, lifted.length);
        last_ = Artwork{std::move(reply), text, lifted.bytes};
    }
    return state;
}

CodingResult<QuorvanePlayerState> PlayerStateDecoder::decodeWhole(Bytes reply) {
    JSONText json{std::move(reply)};
    std::string_view artworkText;
    std::optional<SharedBytes> artwork;
    auto state = coding::readRecord<QuorvanePlayerState>(json, [&](std::string_view text) {
        artworkText = text;
        // Escapes that are in the text after parsing were no escapes before it, but strangers.
        const bool isLast =
            last_ && text.size() == base64Length(last_->bytes.size()) && text == last_->text;
        artwork = isLast ? std::optional{last_->bytes} : readBase64(text);
        return artwork;
    });
    const bool isNew = artwork && !(last_ && last_->bytes.isSameObject(*artwork));
    if (state && isNew) last_ = Artwork{std::move(json).takeBytes(), artworkText, *artwork};
    return state;
}

}  // namespace quorvane

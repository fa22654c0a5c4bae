#include "QuorvaneKit/records/PlayerStateDecoder.hpp"

#include <algorithm>

#include "QuorvaneKit/json/Base64.hpp"
#include "QuorvaneKit/records/RecordCoding.hpp"

namespace quorvane {
namespace {

// Returns the position after the quote that opens the artwork's text; npos if there is none.
//
// In valid JSON, a match that a colon and a quote follow can only be a key. Its first quote cannot
// end a string, because the letter after it would then not be valid JSON. An escaped first quote,
// as in "x\"artworkData", is still part of a key.
std::size_t findArtworkText(std::string_view reply) {
    constexpr std::string_view kKey = "\"artworkData\"";
    const auto skipSpace = [&](std::size_t place) {
        return std::min(reply.find_first_not_of(" \t\n\r", place), reply.size());
    };
    const std::size_t key = reply.find(kKey);
    if (key == std::string_view::npos) return key;
    const std::size_t colon = skipSpace(key + kKey.size());
    if (!reply.substr(colon).starts_with(':')) return std::string_view::npos;
    const std::size_t quote = skipSpace(colon + 1);
    return reply.substr(quote).starts_with('"') ? quote + 1 : std::string_view::npos;
}

// Decodes base64 as it is written between the quotes of a JSON string. Some encoders escape each
// "/" in it. Any other escape is left to the parser.
std::optional<Bytes> decodeQuotedBase64(std::string_view text) {
    if (auto bytes = decodeBase64(text)) return bytes;
    std::string plain;
    plain.reserve(text.size());
    while (!text.empty()) {
        const std::size_t escape = std::min(text.find("\\/"), text.size());
        plain += text.substr(0, escape);
        text.remove_prefix(std::min(escape + 1, text.size()));
    }
    return decodeBase64(plain);
}

Bytes without(std::string_view reply, std::size_t begin, std::size_t length) {
    const ByteView bytes = bytesOf(reply);
    Bytes rest;
    rest.reserve(bytes.size() - length);
    append(rest, bytes.first(begin));
    append(rest, bytes.subspan(begin + length));
    return rest;
}

}  // namespace

// Artwork taken out of a reply's text before the rest is parsed. It is nearly all of the text, so
// the decoder reads it only once.
struct PlayerStateDecoder::Lifted {
    std::size_t begin;  // of the text between its quotes
    std::size_t length;
    SharedBytes bytes;
    bool isLast;
};

CodingResult<QuorvanePlayerState> PlayerStateDecoder::decode(Bytes& reply) {
    const auto lifted = liftArtwork(textOf(reply));
    const Bytes rest = lifted ? without(textOf(reply), lifted->begin, lifted->length) : Bytes{};
    bool isInTrack = false;
    auto state =
        coding::readRecord<QuorvanePlayerState>(lifted ? rest : reply, [&](const JSONValue& text) {
            // The key may occur elsewhere, in an object that is not requested. Of the lifted text
            // the quotes are left, one before and one behind `begin`.
            if (!lifted || text.end != lifted->begin + 1) return readBase64(text);
            isInTrack = true;
            return std::optional{lifted->bytes};
        });
    if (state && isInTrack && !lifted->isLast) {
        const std::string_view text = textOf(reply).substr(lifted->begin, lifted->length);
        Bytes spare = last_ ? std::move(last_->reply) : Bytes{};
        last_ = Artwork{std::exchange(reply, std::move(spare)), text, lifted->bytes};
    } else if (state && !(state->track && state->track->artworkData)) {
        last_.reset();
    }
    return state;
}

// Returns nullopt when the reply has no artwork that can be decoded without the parser.
std::optional<PlayerStateDecoder::Lifted> PlayerStateDecoder::liftArtwork(
    std::string_view reply) const {
    const std::size_t begin = findArtworkText(reply);
    if (begin == std::string_view::npos) return std::nullopt;
    const std::string_view text = reply.substr(begin);
    if (last_ && text.starts_with(last_->text) && text.substr(last_->text.size()).starts_with('"'))
        return Lifted{begin, last_->text.size(), last_->bytes, true};
    // Decodable text has no escape except "\/", so the first quote ends the string.
    const std::size_t length = text.find('"');
    if (length == std::string_view::npos) return std::nullopt;
    auto bytes = decodeQuotedBase64(text.substr(0, length));
    if (!bytes) return std::nullopt;
    return Lifted{begin, length, SharedBytes{*std::move(bytes)}, false};
}

}  // namespace quorvane

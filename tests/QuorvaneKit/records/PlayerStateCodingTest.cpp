// The decoder and the encoder that know the artwork of the last state.
#include <gtest/gtest.h>

#include "QuorvaneKit/records/PlayerStateDecoder.hpp"
#include "QuorvaneKit/records/PlayerStateEncoder.hpp"
#include "tests/QuorvaneKit/records/SampleRecords.hpp"
#include "tests/support/MemoryPorts.hpp"

namespace quorvane {
namespace {

CodingResult<QuorvanePlayerState> decode(PlayerStateDecoder& decoder, std::string_view text) {
    Bytes reply = copyOf(bytesOf(text));
    return decoder.decode(reply);
}

const SharedBytes& artworkOf(const CodingResult<QuorvanePlayerState>& state) {
    return state.value().track.value().artworkData.value();
}

// The sample's text, as written without white space and as written with it.
const std::string kForms[] = {
    std::string{kSampleText},
    replaced(kSampleText, R"("artworkData":)", "\"artworkData\"\n\t\r : "),
    replaced(kSampleText, "//4g", R"(\/\/4g)"), replaced(kSampleText, "//4g", R"(\u002f/4g)")};

TEST(PlayerStateDecoder, UnchangedArtworkIsTheSameObject) {
    for (const std::string& text : kForms) {
        PlayerStateDecoder decoder;
        const auto first = decode(decoder, text);
        EXPECT_EQ(first, sampleState()) << text;
        // The rest of the state may differ, and move the artwork's place in the text.
        const auto second = decode(decoder, replaced(text, "Several", "Several others"));
        EXPECT_EQ(second->track->albumArtist, "Several others");
        // Other escapes than these are the parser's to read, and nobody's to write.
        const bool isKept = text.find("\\u002f") == std::string::npos;
        EXPECT_EQ(artworkOf(second).isSameObject(artworkOf(first)), isKept) << text;
        EXPECT_EQ(decode(decoder, "no state"), std::unexpected(CodingError{}));
        EXPECT_EQ(artworkOf(decode(decoder, text)).isSameObject(artworkOf(first)), isKept);

        for (const auto& [part, by] : {std::pair{"ZT8=", "ZT9="},
                                       {"ZT8=", "ZT8=AAAA"},
                                       {"ZT8=", "ZT8=\\"},
                                       {"ZT8=", ""},
                                       {"dXJl", "dXJm"}}) {
            const std::string changed = replaced(text, part, by);
            EXPECT_EQ(decode(decoder, changed), decodeState(changed)) << changed;
        }
    }
}

TEST(PlayerStateDecoder, ArtworkIsKeptOnlyWhileItIsShown) {
    PlayerStateDecoder decoder;
    const auto first = decode(decoder, kSampleText);
    EXPECT_TRUE(decode(decoder, kSmallestText));
    const auto second = decode(decoder, kSampleText);
    EXPECT_FALSE(artworkOf(second).isSameObject(artworkOf(first)));
    EXPECT_EQ(second, first);
}

TEST(PlayerStateDecoder, AgreesWithThePlainDecoderOnEveryText) {
    const std::string_view key = R"("artworkData":"//4gcGljdHVyZT8=")";
    const std::string artwork{key};
    std::vector<std::string> texts{
        replaced(kSampleText, key, artwork + R"(,"artworkData":"AAAA")"),
        replaced(kSampleText, key, R"("artworkData":"AAAA",)" + artwork),
        replaced(kSampleText, key, R"("artworkData":null,)" + artwork),
        replaced(kSampleText, key, R"("other":{)" + artwork + R"(},"artworkData" :"AAAA")"),
        replaced(kSampleText, R"({"track")", "{" + artwork + R"(,"track")"),
        replaced(kSampleText, key, R"("\"artworkData":"AAAA")"),
        replaced(kSampleText, "loop-7", R"(\"artworkData\":\"AAAA)"),
        replaced(kSampleText, R"("title":)", R"("title":"x"artworkData":"AAAA",)"),
        replaced(kSampleText, R"("title":)", R"("x\\"artworkData":"AAAA","title":)"),
        replaced(kSampleText, key, R"("artworkData":"")"),
        replaced(kSampleText, key, R"("artworkData":"AA\"=")"),
        replaced(kSampleText, key, R"("artworkData":"AAAA)"),
        replaced(kSampleText, "//4g", std::string(1, '\0') + "//4"),
        replaced(kSampleText, "//4g", "\n//4g"),
        std::string{kSampleText} + artwork,
        artwork,
        // The text that the reply before had, but here the backslashes are meant.
        kForms[2],
        replaced(kForms[1], "//4g", R"(\\/\\/4g)"),
        replaced(kForms[1], " : ", "  "),
        replaced(kForms[1], " : ", " : : "),
        replaced(kForms[1], " : ", " :"),
        replaced(kForms[1], " : ", " : 1"),
        replaced(kSampleText, R"("Several")", R"("artworkData")"),
        R"({"track":{"artworkData")",
        R"({"track":{"artworkData" : )",
    };
    for (const std::string& form : kForms) {
        const std::size_t begin = form.find("artworkData") - 3;
        const std::size_t end = form.find("isLoved") + 1;
        for (std::size_t place = begin; place < end; ++place) {
            texts.push_back(form.substr(0, place));
            for (const char letter : {'"', '\\', '/', '=', '{', ',', '\0', '\xFF'}) {
                texts.push_back(form);
                texts.back()[place] = letter;
            }
        }
    }
    PlayerStateDecoder decoder;
    for (const std::string& text : texts) {
        const auto expected = decodeState(text);
        PlayerStateDecoder fresh;
        ASSERT_EQ(decode(fresh, text), expected) << text;
        ASSERT_EQ(decode(decoder, text), expected) << text;
        ASSERT_EQ(decode(decoder, text), expected) << text;
    }
}

TEST(PlayerStateEncoder, WritesAsThePlainEncoderDoesWhateverCameBefore) {
    PlayerStateEncoder encoder;
    const QuorvanePlayerState state = sampleState();
    QuorvanePlayerState other = state;
    other.track->artworkData = SharedBytes{Bytes(100'000, std::byte{0xFB})};
    QuorvanePlayerState bare = state;
    bare.track->artworkData.reset();
    const QuorvanePlayerState equal = sampleState();
    const QuorvanePlayerState* const sequence[] = {&state, &state, &equal, &other,
                                                   &other, &bare,  &state, &other};
    const auto encode = [&](const QuorvanePlayerState& given) -> CodingResult<Bytes> {
        const auto answer = encoder.encode(given);
        if (!answer) return std::unexpected{answer.error()};
        return joined(answer->parts());
    };
    for (const auto* next : sequence) EXPECT_EQ(encode(*next), XPCCodableHelpers::encode(*next));
    EXPECT_EQ(encoder.encode(other)->shared, encoder.encode(other)->shared);
    other.playerPosition = std::numeric_limits<double>::infinity();
    EXPECT_EQ(encode(other), XPCCodableHelpers::encode(other));
    EXPECT_EQ(encode(state), XPCCodableHelpers::encode(state));
}

}  // namespace
}  // namespace quorvane

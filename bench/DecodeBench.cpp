// Decodes a state's reply with artwork, changed each time and unchanged, compared with a copy of
// its text; and the artwork's base64, compared with GLib's decoder. One pinned process, in which
// the rounds of all alternate.

#include <glib.h>

#include <cstring>
#include <string>

#include "QuorvaneKit/json/Base64.hpp"
#include "QuorvaneKit/records/PlayerStateDecoder.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "bench/Measuring.hpp"
#include "bench/Report.hpp"
#include "bench/SampleStates.hpp"

namespace quorvane {
namespace {

constexpr int kRounds = 201;

struct Sample {
    Bytes reply;
    std::string_view base64;  // in it
    std::size_t artworkSize;
};

Sample makeSample(std::size_t size, std::uint32_t seed) {
    Sample sample{*XPCCodableHelpers::encode(sampleState(sampleArtwork(size, seed))), {}, size};
    constexpr std::string_view kKey = "\"artworkData\":\"";
    const std::string_view text = textOf(sample.reply);
    sample.base64 = text.substr(text.find(kKey) + kKey.size(), base64Length(size));
    return sample;
}

void require(bool isRight, const char* what) {
    if (isRight) return;
    std::fprintf(stderr, "wrong: %s\n", what);
    std::exit(1);
}

double decoding(PlayerStateDecoder& decoder, const Sample& sample) {
    Bytes reply = copyOf(sample.reply);  // as the port delivers it
    std::size_t size = 0;
    const double time = microsecondsOf([&] {
        const auto state = decoder.decode(reply);
        size = state ? state->track->artworkData->size() : 0;
    });
    require(size == sample.artworkSize, "the decoded artwork");
    return time;
}

class Contest {
public:
    explicit Contest(std::size_t size) : one_(makeSample(size, 1)), two_(makeSample(size, 2)) {}

    void run() {
        for (int round = 0; round < kRounds; ++round) playRound(round % 2 == 0 ? one_ : two_);
    }

    // Goals are for long artwork: in a short reply the fields outweigh it.
    void tell(const std::string& artwork, bool hasGoals) const {
        Times json;
        for (std::size_t i = 0; i < changed_.rounds.size(); ++i)
            json.add(changed_.rounds[i] - base64_.rounds[i]);
        tellRatio(artwork + " changed, less the same base64 alone", json, hasGoals ? 3 : 0);
        tellRatio(artwork + " unchanged", unchanged_, 3);
        const double ratio = rival_.over(base64_);
        report({.what = artwork + ", its base64 alone",
                .ratio = ratio,
                .against = "faster than GLib's decoder",
                .figure = timeText(base64_.median()) + " to " + timeText(rival_.median()),
                .goal = "≥ 1.00 ×",
                .isMet = ratio >= 1});
    }

private:
    void tellRatio(const std::string& what, const Times& own, double limit) const {
        const double ratio = own.over(copy_);
        ReportRow row{.what = what,
                      .ratio = ratio,
                      .against = "memcpy of the text",
                      .figure = timeText(own.median()) + " to " + timeText(copy_.median()),
                      .reason = "the decoder also reads some forty small fields"};
        if (limit > 0) {
            row.goal = "≤ " + numberText(limit, " ×");
            row.isMet = ratio <= limit;
        }
        report(row);
    }

    void playRound(const Sample& sample) {
        copy_.add(microsecondsOf([&] {
            std::memcpy(text_.data(), sample.reply.data(),
                        std::min(text_.size(), sample.reply.size()));
            asm volatile("" : : "r"(text_.data()) : "memory");
        }));
        changed_.add(decoding(changing_, sample));
        base64_.add(microsecondsOf([&] { artwork_ = decodeBase64(sample.base64); }));
        require(artwork_ && artwork_->size() == sample.artworkSize, "base64 alone");
        rival_.add(microsecondsOf([&] {
            int state = 0;
            guint bits = 0;
            rivalSize_ = g_base64_decode_step(
                sample.base64.data(), static_cast<gssize>(sample.base64.size()),
                reinterpret_cast<guchar*>(text_.data()), &state, &bits);
        }));
        require(rivalSize_ == sample.artworkSize, "GLib's decoder");
        unchanged_.add(decoding(unchanging_, one_));
    }

    Sample one_;
    Sample two_;
    Bytes text_ = copyOf(one_.reply);
    PlayerStateDecoder changing_;
    PlayerStateDecoder unchanging_;
    std::optional<Bytes> artwork_;  // kept until the next round, as the decoder does
    std::size_t rivalSize_ = 0;
    Times copy_, changed_, base64_, rival_, unchanged_;
};

int runBench() {
    pin(0);
    beginReport("Decoding a state's reply");
    const std::pair<const char*, std::size_t> sizes[] = {{"artwork of 50 KB", 50 * 1024},
                                                         {"artwork of 500 KB", 500 * 1024},
                                                         {"artwork of 1 MB", 1024 * 1024}};
    for (const auto& [name, size] : sizes) {
        Contest contest{size};
        contest.run();
        contest.tell(name, size > 100'000);
    }
    return 0;
}

}  // namespace
}  // namespace quorvane

int main() { return quorvane::runBench(); }

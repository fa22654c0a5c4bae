// Decoding a state's reply with artwork in it, changed each time and unchanged, against copying its
// text and against other JSON libraries. One process, pinned; rounds of all take turns.

#include <map>
#include <string>

#include "QuorvaneKit/json/Base64.hpp"
#include "QuorvaneKit/records/PlayerStateDecoder.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "bench/JSONRivals.hpp"
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
    Bytes reply = copyOf(sample.reply);  // as the port hands it over
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

    void tell(const std::string& size, bool isLarge) const {
        const Times& copy = times_.at("copy");
        const Times& changed = times_.at("changed");
        const Times& base64 = times_.at("base64");
        Times json;
        for (std::size_t i = 0; i < changed.rounds.size(); ++i)
            json.add(changed.rounds[i] - base64.rounds[i]);
        tellRatio({.what = "artwork of " + size + " changed, less the same base64 alone",
                   .goal = isLarge ? "≤ 3 ×" : ""},
                  json, copy, 3);
        report({.what = "artwork of " + size + " changed, with its base64",
                .ratio = changed.over(copy),
                .against = "memcpy of the text",
                .figure = timeText(changed.median()) + " to " + timeText(copy.median()),
                .goal = size == "1 MB" ? "≤ 0.7 ms" : "",
                .isMet = size == "1 MB" ? std::optional{changed.median() <= 700} : std::nullopt,
                .reason = "a table decodes a group of four letters in about a nanosecond"});
        for (const auto& rival : {nlohmannRival(), qtJSONRival(), simdjsonRival()})
            if (rival)
                report({.what = "",
                        .ratio = times_.at(rival->name).over(changed),
                        .against = std::string{"faster than "} + rival->name,
                        .figure = timeText(times_.at(rival->name).median())});
        tellRatio({.what = "artwork of " + size + " unchanged", .goal = "≤ 3 ×"},
                  times_.at("unchanged"), copy, 3);
    }

private:
    static void tellRatio(ReportRow row, const Times& own, const Times& copy, double limit) {
        row.ratio = own.over(copy);
        row.against = "memcpy of the text";
        row.figure = timeText(own.median()) + " to " + timeText(copy.median());
        if (!row.goal.empty()) row.isMet = *row.ratio <= limit;
        row.reason = "besides the text there are some forty small fields to read";
        report(row);
    }

    void playRound(const Sample& sample) {
        times_["copy"].add(microsecondsOf([&] {
            std::memcpy(copy_.data(), sample.reply.data(),
                        std::min(copy_.size(), sample.reply.size()));
            asm volatile("" : : "r"(copy_.data()) : "memory");
        }));
        times_["changed"].add(decoding(changing_, sample));
        times_["base64"].add(microsecondsOf([&] { artwork_ = decodeBase64(sample.base64); }));
        require(artwork_ && artwork_->size() == sample.artworkSize, "base64 alone");
        times_["unchanged"].add(decoding(unchanging_, one_));
        for (const auto& rival : {nlohmannRival(), qtJSONRival(), simdjsonRival()}) {
            if (!rival) continue;
            std::size_t size = 0;
            times_[rival->name].add(
                microsecondsOf([&] { size = rival->decode(textOf(sample.reply)); }));
            require(size == sample.artworkSize, rival->name);
        }
    }

    Sample one_;
    Sample two_;
    Bytes copy_ = copyOf(one_.reply);
    PlayerStateDecoder changing_;
    PlayerStateDecoder unchanging_;
    std::optional<Bytes> artwork_;  // kept until the next, as the decoder does
    std::map<std::string, Times> times_;
};

int runBench() {
    pin(0);
    beginReport("Decoding a state's reply");
    const std::pair<const char*, std::size_t> sizes[] = {
        {"50 KB", 50 * 1024}, {"500 KB", 500 * 1024}, {"1 MB", 1024 * 1024}};
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

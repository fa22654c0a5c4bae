// Whether the time of the secret's check tells how much of a guess is right: guesses that are wrong
// in the first byte, in the last byte and not at all, turn by turn, against one memcmp.
#include <cstring>

#include "QuorvaneKit/MessagePortWire.hpp"
#include "bench/Measuring.hpp"
#include "bench/Report.hpp"

namespace quorvane {
namespace {

constexpr int kRounds = 301;
constexpr int kChecks = 20'000;
constexpr std::size_t kLength = MessagePortWire::kSecretLength;

// The compiler can neither see into it nor leave it out.
template <typename Value>
void keep(Value& value) {
    asm volatile("" : "+m"(value) : : "memory");
}

struct Guess {
    Bytes framed;
    Times times{};
};

Guess guessWrongAt(const Bytes& secret, std::size_t place) {
    Bytes framed = copyOf(secret);
    if (place < kLength) framed[place] ^= std::byte{1};
    framed.resize(kLength + 33);
    return {std::move(framed)};
}

double timeOfChecks(Guess& guess, const Bytes& secret) {
    return microsecondsOf([&] {
        for (int check = 0; check < kChecks; ++check) {
            ByteView framed = guess.framed;
            keep(framed);
            bool isRight = MessagePortWire::unwrap(framed, secret).has_value();
            keep(isRight);
        }
    });
}

double timeOfComparisons(const Guess& guess, const Bytes& secret) {
    return microsecondsOf([&] {
        for (int check = 0; check < kChecks; ++check) {
            const std::byte* framed = guess.framed.data();
            keep(framed);
            int difference = std::memcmp(framed, secret.data(), kLength);
            keep(difference);
        }
    });
}

int runBench() {
    pin(0);
    const Bytes secret(kLength, std::byte{0x5a});
    Guess first = guessWrongAt(secret, 0);
    Guess last = guessWrongAt(secret, kLength - 1);
    Guess right = guessWrongAt(secret, kLength);
    Times comparison;
    for (int round = 0; round < kRounds; ++round) {
        for (Guess* guess : {&first, &last, &right}) guess->times.add(timeOfChecks(*guess, secret));
        comparison.add(timeOfComparisons(right, secret));
    }
    const auto row = [&](const char* what, const Guess& guess, const Times& against,
                         const char* name, double least, double most, const char* goal) {
        const double ratio = guess.times.over(against);
        report({.what = what,
                .ratio = ratio,
                .against = name,
                .figure = timeText(guess.times.median() / kChecks),
                .goal = goal,
                .isMet = ratio >= least && ratio <= most,
                .reason = ""});
    };
    beginReport("The secret's check");
    row("wrong in the first byte", first, right.times, "the right secret", 0.98, 1.02,
        "within 2 %");
    row("wrong in the last byte", last, right.times, "the right secret", 0.98, 1.02, "within 2 %");
    row("the right secret", right, comparison, "memcmp", 0, 2, "at most 2 ×");
    return 0;
}

}  // namespace
}  // namespace quorvane

int main() { return quorvane::runBench(); }

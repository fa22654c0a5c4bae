// Tests whether the time of the secret's check depends on how much of a guess is right. Guesses
// that are wrong in the first byte, wrong in the last byte and right alternate, also with a check
// by memcmp.
#include <cstring>
#include <optional>

#include "QuorvaneKit/link/MessagePortWire.hpp"
#include "bench/Measuring.hpp"
#include "bench/Report.hpp"

namespace quorvane {
namespace {

constexpr int kRounds = 301;
constexpr int kChecks = 20'000;
constexpr std::size_t kLength = MessagePortWire::kSecretLength;

// Hides the value from the optimiser and keeps it alive.
template <typename Value>
void keep(Value& value) {
    asm volatile("" : "+m"(value) : : "memory");
}

using Unwrap = std::optional<ByteView> (*)(ByteView framed, ByteView secret);

// The same check with a comparison that stops at the first difference.
[[gnu::noinline]] std::optional<ByteView> unwrapByMemcmp(ByteView framed, ByteView secret) {
    if (secret.size() != kLength || framed.size() < kLength) return std::nullopt;
    if (std::memcmp(framed.data(), secret.data(), kLength) != 0) return std::nullopt;
    return framed.subspan(kLength);
}

double timeOfChecks(Unwrap unwrap, ByteView request, const Bytes& secret) {
    return microsecondsOf([&] {
        for (int check = 0; check < kChecks; ++check) {
            ByteView framed = request;
            keep(framed);
            bool isRight = unwrap(framed, secret).has_value();
            keep(isRight);
        }
    });
}

int runBench() {
    pin(0);
    const Bytes secret(kLength, std::byte{0x5a});
    Bytes request = copyOf(secret);
    request.resize(kLength + 33);
    Times first, last, right, comparison;
    const auto guess = [&](Times& times, Unwrap unwrap, std::optional<std::size_t> wrongPlace) {
        // Changed in place, because the speed may depend on the address.
        if (wrongPlace) request[*wrongPlace] ^= std::byte{1};
        times.add(timeOfChecks(unwrap, request, secret));
        if (wrongPlace) request[*wrongPlace] ^= std::byte{1};
    };
    for (int round = 0; round < kRounds; ++round) {
        guess(first, MessagePortWire::unwrap, 0);
        guess(last, MessagePortWire::unwrap, kLength - 1);
        guess(right, MessagePortWire::unwrap, std::nullopt);
        guess(comparison, unwrapByMemcmp, std::nullopt);
    }
    const auto row = [](const char* what, const Times& times, const Times& against,
                        const char* name, double least, double most, const char* goal) {
        const double ratio = times.over(against);
        report({.what = what,
                .ratio = ratio,
                .against = name,
                .figure = numberText(times.median() / kChecks * 1000, " ns"),
                .goal = goal,
                .isMet = ratio >= least && ratio <= most,
                .reason = "the time depends on where a guess is wrong"});
    };
    beginReport("The secret's check");
    row("wrong in the first byte", first, last, "wrong in the last byte", 0.98, 1.02, "within 2 %");
    row("the right secret", right, comparison, "memcmp", 0, 2, "at most 2 ×");
    return 0;
}

}  // namespace
}  // namespace quorvane

int main() { return quorvane::runBench(); }

// A short run of every fuzz target with random inputs, so that each test run tries new ones.
// docs/reliability.md describes the long, coverage-guided runs.
#include <gtest/gtest.h>

#include <cstdlib>
#include <ostream>
#include <random>

#include "tests/fuzz/FuzzTargets.hpp"

namespace quorvane {

namespace {

std::size_t below(std::mt19937& random, std::size_t bound) {
    return bound == 0 ? 0 : random() % bound;
}

// One of the changes on which parsers fail.
void change(std::string& text, std::mt19937& random) {
    static constexpr std::string_view kPieces[] = {
        "\"",    "\\",   "{",           "}",       "[",
        "]",     ":",    ",",           "0",       "-1",
        "1e999", "null", "\\u0000",     "\\ud800", "9223372036854775808",
        "%00",   "%2",   "<",           ">",       "&#x110000;",
        "\xff",  "\xc3", "\xed\xa0\x80"};
    const std::size_t place = below(random, text.size());
    switch (below(random, 6)) {
        case 0: text.resize(place); break;
        case 1: text.erase(place, 1 + below(random, 8)); break;
        case 2: text.insert(place, text.substr(below(random, text.size()), 16)); break;
        case 3: text.insert(place, kPieces[below(random, std::size(kPieces))]); break;
        case 4: text.append(below(random, 64), static_cast<char>(below(random, 256))); break;
        default:
            if (!text.empty()) text[place] = static_cast<char>(below(random, 256));
    }
}

TEST(Fuzz, EveryTargetKeepsItsPromises) {
    const unsigned number = std::random_device{}();
    std::mt19937 random{number};
    for (const FuzzTarget& target : fuzzTargets()) {
        // Printed first, because a target may end the process.
        std::printf("%s, seed %u\n", target.name.data(), number);
        std::fflush(stdout);
        for (const std::string_view seed : target.seeds) target.read(bytesOf(seed));
        target.read({});
        for (int input = 0; input < 2000; ++input) {
            std::string text{target.seeds[below(random, target.seeds.size())]};
            for (std::size_t changes = 1 + below(random, 4); changes > 0; --changes)
                change(text, random);
            // In an allocation of its exact size, so that a read past its end is detected.
            target.read(copyOf(bytesOf(text)));
        }
    }
}

}  // namespace
}  // namespace quorvane

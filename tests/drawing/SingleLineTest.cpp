#include "drawing/SingleLine.hpp"

#include <gtest/gtest.h>

namespace quorvane {
namespace {

TEST(SingleLine, KeepsGoodTextAndTakesOutWhatBreaksALine) {
    EXPECT_EQ(singleLine(""), "");
    EXPECT_EQ(singleLine("Größe 海 🌊"), "Größe 海 🌊");
    EXPECT_EQ(singleLine("a\nb\tc\x7f"), "a b c ");
    EXPECT_EQ(singleLine("a\u2028b\u0085c"), "a b c");
    EXPECT_EQ(singleLine(std::string_view{"a\0b", 3}), "a b");
}

TEST(SingleLine, ReplacesEveryBrokenSequence) {
    const struct {
        const char* broken;
        const char* shown;
    } rows[] = {
        {"\x80", "\uFFFD"},                                // continuation without a start
        {"\xC3", "\uFFFD"},                                // start at the end
        {"\xC3(", "\uFFFD("},                              // start before something else
        {"\xC0\xAF", "\uFFFD\uFFFD"},                      // overlong
        {"\xE0\x80\x80", "\uFFFD\uFFFD\uFFFD"},            // overlong
        {"\xED\xA0\x80x", "\uFFFD\uFFFD\uFFFDx"},          // surrogate
        {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond Unicode
        {"\xFFx", "\uFFFDx"},
    };
    for (const auto& row : rows) EXPECT_EQ(singleLine(row.broken), row.shown);
}

TEST(SingleLine, CutsAfterWholeCharacters) {
    EXPECT_EQ(singleLine("äöü", 3), "äöü");
    EXPECT_EQ(singleLine("äöüx", 3), "äöü…");
    const std::string endless(100'000, 'a');
    EXPECT_EQ(singleLine(endless), std::string(kLongestLine, 'a') + "…");
}

}  // namespace
}  // namespace quorvane

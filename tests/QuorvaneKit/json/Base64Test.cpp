#include "QuorvaneKit/json/Base64.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace quorvane {
namespace {

std::string encoded(ByteView bytes) {
    Bytes text;
    appendBase64(text, bytes);
    return std::string{textOf(text)};
}

// By the definition, bit by bit: what the tables are held against.
std::string encodedBitByBit(ByteView bytes) {
    constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t bit = 0; bit < bytes.size() * 8; bit += 6) {
        unsigned value = 0;
        for (std::size_t next = bit; next < bit + 6; ++next) {
            const unsigned byte = next / 8 < bytes.size() ? unsigned(bytes[next / 8]) : 0;
            value = value << 1 | (byte >> (7 - next % 8) & 1);
        }
        text += alphabet[value];
    }
    return text.append((4 - text.size() % 4) % 4, '=');
}

TEST(Base64, CodesEveryLengthAndEveryValue) {
    std::mt19937 random{20260101};
    for (std::size_t size = 0; size < 300; ++size) {
        Bytes bytes;
        for (std::size_t index = 0; index < size; ++index)
            bytes.push_back(static_cast<std::byte>(random()));
        const std::string text = encoded(bytes);
        ASSERT_EQ(text, encodedBitByBit(bytes));
        ASSERT_EQ(text.size(), base64Length(size));
        ASSERT_EQ(decodeBase64(text), bytes);

        std::string escaped;
        for (const char letter : text) escaped.append(letter == '/' ? "\\/" : std::string{letter});
        ASSERT_EQ(decodeBase64(escaped, Base64Form::escapedSolidus), bytes);
        ASSERT_EQ(decodeBase64(text, Base64Form::escapedSolidus), bytes);
        if (escaped != text) {
            ASSERT_EQ(decodeBase64(escaped), std::nullopt);
        }
    }
}

TEST(Base64, RefusesWhatIsNotWholeGroupsOfLetters) {
    for (const std::string_view text : {"A",         "AA",    "AAA",   "AAAAA",    "=",
                                        "==",        "====",  "A===",  "A=AA",     "AA=A",
                                        "AA=",       "AAA==", "AAAA=", "AAAA====", "AA==AAAA",
                                        "AAA=AAA=",  "AA A",  " AAAA", "AAAA\n",   "AA-_",
                                        "AA\xC3\xA9"})
        EXPECT_EQ(decodeBase64(text), std::nullopt) << text;
    EXPECT_EQ(decodeBase64(std::string_view{"AA\0A", 4}), std::nullopt);
    for (const std::string_view text :
         {"AAA\\", "AAA\\/\\", "\\AAAA", "AA\\\\/A", "AAAA\\/", "\\/"})
        EXPECT_EQ(decodeBase64(text, Base64Form::escapedSolidus), std::nullopt) << text;
    // What the padding leaves over of the last letter is no part of the bytes.
    EXPECT_EQ(decodeBase64("AB=="), Bytes{std::byte{0}});
}

}  // namespace
}  // namespace quorvane

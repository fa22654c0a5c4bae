#include "drawing/pictures/PictureHeader.hpp"

#include <gtest/gtest.h>

#include <string>

namespace quorvane {
namespace {

using namespace std::string_literals;

struct Sample {
    const char* name;
    std::string bytes;
    PictureSize size;
};

// The first bytes of real pictures of 300 by 200, or as small as the format's header can be.
const std::vector<Sample>& samples() {
    static const std::vector<Sample> list{
        {"png", "\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\x01\x2C\0\0\0\xC8"s, {300, 200}},
        {"gif", "GIF89a\x2C\x01\xC8\0"s, {300, 200}},
        {"bmp", "BM\x36\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\x2C\x01\0\0\xC8\0\0\0"s, {300, 200}},
        {"bmp from top to bottom",
         "BM\x36\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\x2C\x01\0\0\x38\xFF\xFF\xFF"s,
         {300, 200}},
        {"bmp of the first kind",
         "BM\x36\0\0\0\0\0\0\0\x1A\0\0\0\x0C\0\0\0\x2C\x01\xC8\0"s,
         {300, 200}},
        {"jpeg",
         "\xFF\xD8\xFF\xE0\0\x10JFIF\0\x01\x01\0\0\x01\0\x01\0\0\xFF\xFF\xC4\0\x04\x01\x02"
         "\xFF\xC2\0\x11\x08\0\xC8\x01\x2C"s,
         {300, 200}},
        {"webp, lossy",
         "RIFF\x24\0\0\0WEBPVP8 \x18\0\0\0\x30\x01\0\x9D\x01\x2A\x2C\x41\xC8\x80"s,
         {300, 200}},
        {"webp, lossless", "RIFF\x24\0\0\0WEBPVP8L\x18\0\0\0\x2F\x2B\xC1\x31\0"s, {300, 200}},
        {"webp, extended",
         "RIFF\x24\0\0\0WEBPVP8X\x0A\0\0\0\x10\0\0\0\x2B\x01\0\xC7\0\0"s,
         {300, 200}},
    };
    return list;
}

TEST(PictureHeader, TellsTypeAndSizeOfEveryKnownFormat) {
    for (const Sample& sample : samples()) {
        EXPECT_EQ(readPictureSize(bytesOf(sample.bytes)), sample.size) << sample.name;
        const std::string_view type = readPictureType(bytesOf(sample.bytes));
        EXPECT_TRUE(("image/"s + sample.name).starts_with(type)) << sample.name;
    }
    EXPECT_EQ(readPictureType(bytesOf("<svg/>"s)), nullptr);
}

TEST(PictureHeader, TellsNothingOfWhatIsCutOffOrUnknown) {
    for (const Sample& sample : samples())
        for (std::size_t length = 0; length < sample.bytes.size(); ++length) {
            // A copy of exactly that length, so that a byte too many is noticed.
            const Bytes cut = copyOf(bytesOf(sample.bytes).first(length));
            EXPECT_EQ(readPictureSize(cut), std::nullopt) << sample.name << ", " << length;
        }
    for (const std::string& text :
         {"{}"s, "<svg xmlns=\"http://www.w3.org/2000/svg\"/>"s, "\xFF\xD8\xFF\xDA\0\x08"s,
          "\xFF\xD8\xFF\xE0\0\x01"s, "\xFF\xD8\xFF\xD9"s, "\x89PNG\r\n\x1A\n\0\0\0\rIDAT12345678"s,
          "RIFF\x24\0\0\0WAVEfmt 1234567890123456"s})
        EXPECT_EQ(readPictureSize(bytesOf(text)), std::nullopt) << text;
}

TEST(PictureHeader, SurvivesEveryChangedByte) {
    for (const Sample& sample : samples())
        for (std::size_t place = 0; place < sample.bytes.size(); ++place)
            for (int value = 0; value < 256; ++value) {
                Bytes changed = copyOf(bytesOf(sample.bytes));
                changed[place] = std::byte(value);
                readPictureSize(changed);
            }
}

TEST(PictureHeader, BoundsWhatIsDecoded) {
    EXPECT_TRUE(isDecodable({1, 1}));
    EXPECT_TRUE(isDecodable({kLongestPictureSide, 1}));
    EXPECT_TRUE(isDecodable({8'000, 5'000}));
    EXPECT_FALSE(isDecodable({8'000, 5'001}));
    EXPECT_FALSE(isDecodable({kLongestPictureSide + 1, 1}));
    EXPECT_FALSE(isDecodable({0, 5}));
    EXPECT_FALSE(isDecodable({5, 0}));
    EXPECT_FALSE(isDecodable({0xFFFFFFFF, 0xFFFFFFFF}));
}

}  // namespace
}  // namespace quorvane

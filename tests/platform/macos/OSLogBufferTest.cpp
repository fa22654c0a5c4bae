#include "platform/macos/services/OSLogBuffer.hpp"

#include <gtest/gtest.h>

#include <cstring>

namespace quorvane {
namespace {

// Logs through a real logger, so that formats and arguments are those of the program. The bytes are
// read while the line still exists; pointers are shown as their texts.
std::string bytesOf(const std::function<void(const Logger&)>& log) {
    std::string shown;
    log(Logger{[&](const LogLine& line) {
                   OSLogBuffer buffer{line};
                   const std::uint8_t* at = buffer.data();
                   const std::uint8_t* const end = at + buffer.size();
                   const auto byte = [&] {
                       char digits[4];
                       std::snprintf(digits, sizeof digits, "%02x ", *at++);
                       shown += digits;
                       return at[-1];
                   };
                   byte();
                   byte();
                   while (at < end) {
                       const bool isText = (byte() & 0xf0) == 0x20;
                       const std::size_t size = byte();
                       if (isText) {
                           const char* text = nullptr;
                           std::memcpy(&text, at, sizeof text);
                           shown += "'" + std::string{text} + "' ";
                           at += size;
                       } else {
                           for (std::size_t left = size; left > 0; --left) byte();
                       }
                   }
               },
               "subsystem", "category"});
    return shown;
}

// The compiler's output for the system's own logging macros.
TEST(OSLogBuffer, HasTheLayoutThatTheLogReads) {
    EXPECT_EQ(bytesOf([](const Logger& log) { log.info("nothing"); }), "00 00 ");
    EXPECT_EQ(bytesOf([](const Logger& log) { log.info("%d and %ld", -2, 3L); }),
              "00 02 00 04 fe ff ff ff 00 08 03 00 00 00 00 00 00 00 ");
    EXPECT_EQ(bytesOf([](const Logger& log) {
                  log.info("%u %llu %{bool}d", 7U, std::uint64_t{1} << 40, true);
              }),
              "00 03 00 04 07 00 00 00 00 08 00 00 00 00 00 01 00 00 00 04 01 00 00 00 ");
    EXPECT_EQ(bytesOf([](const Logger& log) { log.info("%f", 1.0); }),
              "00 01 00 08 00 00 00 00 00 00 f0 3f ");
}

// The first byte tells the log whether a value must be redacted: a wrong flag would reveal a title.
TEST(OSLogBuffer, MarksTextsByTheirPrivacy) {
    const auto shown = [](const char* begin, std::string_view text) {
        return std::string{begin} + "'" + std::string{text} + "' ";
    };
    EXPECT_EQ(bytesOf([](const Logger& log) { log.info("%{public}s", "shown"); }),
              shown("02 01 22 08 ", "shown"));
    EXPECT_EQ(bytesOf([](const Logger& log) { log.info("%{private}s", "a title"); }),
              shown("03 01 21 08 ", "a title"));
    EXPECT_EQ(bytesOf([](const Logger& log) { log.info("%s", "unmarked"); }),
              shown("02 01 20 08 ", "unmarked"));
}

// Short texts are stored inside their string: growing the list would invalidate pointers to them.
TEST(OSLogBuffer, KeepsEveryTextInPlaceAndEnded) {
    const std::string whole = "one two three";
    const std::string_view one = std::string_view{whole}.substr(0, 3);
    EXPECT_EQ(bytesOf([&](const Logger& log) {
                  log.info("%{public}s %{private}s %{public}s %{public}s %{public}s", one, "2", "3",
                           "4", "5");
              }),
              "03 05 22 08 'one' 21 08 '2' 22 08 '3' 22 08 '4' 22 08 '5' ");
}

}  // namespace
}  // namespace quorvane

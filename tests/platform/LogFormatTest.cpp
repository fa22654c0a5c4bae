#include <gtest/gtest.h>

#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

TEST(LogFormat, RendersEachPlaceholderAndHidesPrivateText) {
    RecordingLog log;
    const Logger logger{log.sink(), "subsystem", "category"};
    logger.info("a %{public}s, b %{private}s, c %s, d %{bool}d, e %d", "one", std::string{"two"},
                "three", true, -5);
    logger.error("f %ld, g %u, h %llu, i %lu, j %f → done", -1L, 7U, 18'446'744'073'709'551'615ULL,
                 3UL, 1.5);
    const auto lines = log.lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].text, "a one, b two, c three, d true, e -5");
    EXPECT_EQ(lines[0].redacted, "a one, b <private>, c <private>, d true, e -5");
    EXPECT_EQ(lines[0].level, LogLevel::info);
    EXPECT_EQ(lines[1].text, "f -1, g 7, h 18446744073709551615, i 3, j 1.500000 → done");
    EXPECT_EQ(lines[1].level, LogLevel::error);
}

TEST(LogFormat, AcceptsOnlyWhatFits) {
    using Kind = LogPlaceholder::Kind;
    EXPECT_TRUE(fitsPlaceholder<bool>(Kind::boolean));
    EXPECT_FALSE(fitsPlaceholder<int>(Kind::boolean));
    EXPECT_FALSE(fitsPlaceholder<bool>(Kind::int32));
    EXPECT_FALSE(fitsPlaceholder<long>(Kind::int32));
    EXPECT_FALSE(fitsPlaceholder<unsigned>(Kind::int64));
    EXPECT_FALSE(fitsPlaceholder<double>(Kind::text));
    LogPlaceholder placeholder;
    EXPECT_FALSE(nextPlaceholder("50% done", 0, placeholder));
}

}  // namespace
}  // namespace quorvane

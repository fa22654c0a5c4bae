#include "AddOnKit/card/TimeFormatting.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace quorvane {
namespace {

TEST(TimeFormatting, ShowsMinutesAndFromAnHourOnHours) {
    const struct {
        double seconds;
        const char* text;
    } rows[] = {
        {0, "0:00"},
        {59.9, "0:59"},
        {60, "1:00"},
        {599, "9:59"},
        {3599.999, "59:59"},
        {3600, "1:00:00"},
        {3661.5, "1:01:01"},
        {86'400, "24:00:00"},
        {-3, "0:00"},
        {std::numeric_limits<double>::infinity(), "0:00"},
        {-std::numeric_limits<double>::infinity(), "0:00"},
        {std::numeric_limits<double>::quiet_NaN(), "0:00"},
    };
    for (const auto& row : rows) EXPECT_EQ(TimeFormatting::text(row.seconds), row.text);
    EXPECT_FALSE(TimeFormatting::text(1e300).empty());
}

TEST(TimeFormatting, RemainingTimeHasAMinusSignOrIsNotKnown) {
    EXPECT_EQ(TimeFormatting::remaining(200, 10.5), "\u22123:09");
    EXPECT_EQ(TimeFormatting::remaining(200, 200), "\u22120:00");
    EXPECT_EQ(TimeFormatting::remaining(std::nullopt, 10), "\u2212\u2013:\u2013\u2013");
}

}  // namespace
}  // namespace quorvane

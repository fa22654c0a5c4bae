#include "QuorvaneKit/json/ISO8601Date.hpp"

#include <gtest/gtest.h>

namespace quorvane {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

TEST(ISO8601Date, ReadsAndWritesDatesOfAllKinds) {
    struct Row {
        std::int64_t time;
        std::string_view text;
    };
    for (const auto& [time, text] :
         {Row{0, "1970-01-01T00:00:00Z"}, Row{-1, "1969-12-31T23:59:59Z"},
          Row{951'827'696, "2000-02-29T12:34:56Z"}, Row{1'767'225'599, "2025-12-31T23:59:59Z"},
          Row{-9'223'372'036, "1677-09-21T00:12:44Z"},
          Row{9'223'372'036, "2262-04-11T23:47:16Z"}}) {
        EXPECT_EQ(iso8601Text(WallTime{seconds{time}}), text);
        EXPECT_EQ(wallTimeFromISO8601(text), WallTime{seconds{time}});
    }
    EXPECT_EQ(iso8601Text(WallTime{milliseconds{1999}}), "1970-01-01T00:00:01Z");
    EXPECT_EQ(iso8601Text(WallTime{milliseconds{-1}}), "1969-12-31T23:59:59Z");
    EXPECT_EQ(wallTimeFromISO8601("1970-01-01T01:30:00+01:30"), WallTime{});
    EXPECT_EQ(wallTimeFromISO8601("1969-12-31T23:00:00-01:00"), WallTime{});
    for (const std::string_view early :
         {"1677-09-21T00:12:43Z", "0001-01-01T00:00:00Z", "0000-01-01T00:00:00+23:59"})
        EXPECT_EQ(wallTimeFromISO8601(early), WallTime{seconds{-9'223'372'036}}) << early;
    for (const std::string_view late :
         {"2262-04-11T23:47:17Z", "4001-01-01T00:00:00Z", "9999-12-31T23:59:59-23:59"})
        EXPECT_EQ(wallTimeFromISO8601(late), WallTime{seconds{9'223'372'036}}) << late;
}

TEST(ISO8601Date, RefusesOtherFormsAndDatesThatAreNone) {
    for (const std::string_view text : {"",
                                        "1767225600",
                                        "2026-01-01",
                                        "2026-01-01T00:00Z",
                                        "2026-01-01T00:00:00",
                                        "2026-01-01T00:00:00.5Z",
                                        "2026-01-01T00:00:00ZZ",
                                        " 2026-01-01T00:00:00Z",
                                        "2026-01-01 00:00:00Z",
                                        "2026-01-01t00:00:00z",
                                        "20260101T000000Z",
                                        "2026-1-01T00:00:00Z",
                                        "+026-01-01T00:00:00Z",
                                        "2026-13-01T00:00:00Z",
                                        "2026-00-01T00:00:00Z",
                                        "2025-02-29T00:00:00Z",
                                        "2026-01-00T00:00:00Z",
                                        "2026-01-01T24:00:00Z",
                                        "2026-01-01T00:60:00Z",
                                        "2026-01-01T00:00:60Z",
                                        "2026-01-01T00:00:00+0100",
                                        "2026-01-01T00:00:00+24:00",
                                        "2026-01-01T00:00:00~01:00"})
        EXPECT_EQ(wallTimeFromISO8601(text), std::nullopt) << text;
}

}  // namespace
}  // namespace quorvane

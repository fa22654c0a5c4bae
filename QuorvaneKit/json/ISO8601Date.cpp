#include "QuorvaneKit/json/ISO8601Date.hpp"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace quorvane {
namespace {

using std::chrono::seconds;

// The whole seconds that WallTime holds: 1677 to 2262.
constexpr std::chrono::sys_seconds kEarliest = std::chrono::ceil<seconds>(WallTime::min());
constexpr std::chrono::sys_seconds kLatest = std::chrono::floor<seconds>(WallTime::max());

// Whether the text has a digit for each '0' of the form, and the form's own characters elsewhere.
bool hasForm(std::string_view text, std::string_view form) {
    return std::ranges::equal(text, form, [](char letter, char wanted) {
        return wanted == '0' ? letter >= '0' && letter <= '9' : letter == wanted;
    });
}

// The number written in these digits of the text.
unsigned numberAt(std::string_view text, std::size_t begin, std::size_t count) {
    unsigned number = 0;
    std::from_chars(text.data() + begin, text.data() + begin + count, number);
    return number;
}

// Returns nullopt for a time that no clock shows.
std::optional<seconds> timeOfDay(unsigned hour, unsigned minute, unsigned second) {
    if (hour > 23 || minute > 59 || second > 59) return std::nullopt;
    return std::chrono::hours{hour} + std::chrono::minutes{minute} + seconds{second};
}

// The distance from UTC: "Z", or a sign with hours and minutes.
std::optional<seconds> offsetFrom(std::string_view text) {
    if (text == "Z") return seconds{0};
    if (!hasForm(text, "+00:00") && !hasForm(text, "-00:00")) return std::nullopt;
    const auto distance = timeOfDay(numberAt(text, 1, 2), numberAt(text, 4, 2), 0);
    return distance && text.front() == '-' ? -*distance : distance;
}

}  // namespace

std::string iso8601Text(WallTime time) {
    const auto wholeSeconds = std::chrono::floor<seconds>(time);
    const auto day = std::chrono::floor<std::chrono::days>(wholeSeconds);
    const std::chrono::year_month_day date{day};
    const std::chrono::hh_mm_ss clock{wholeSeconds - day};
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()));
    return text;
}

std::optional<WallTime> wallTimeFromISO8601(std::string_view text) {
    constexpr std::string_view kForm = "0000-00-00T00:00:00";
    if (!hasForm(text.substr(0, kForm.size()), kForm)) return std::nullopt;
    const std::chrono::year_month_day date{
        std::chrono::year{static_cast<int>(numberAt(text, 0, 4))},
        std::chrono::month{numberAt(text, 5, 2)}, std::chrono::day{numberAt(text, 8, 2)}};
    const auto clock =
        timeOfDay(numberAt(text, 11, 2), numberAt(text, 14, 2), numberAt(text, 17, 2));
    const auto offset = offsetFrom(text.substr(kForm.size()));
    if (!date.ok() || !clock || !offset) return std::nullopt;
    const std::chrono::sys_seconds time = std::chrono::sys_days{date} + *clock - *offset;
    return WallTime{std::clamp(time, kEarliest, kLatest)};
}

}  // namespace quorvane

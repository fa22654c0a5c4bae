#include "QuorvaneKit/json/ISO8601Date.hpp"

#include <algorithm>

namespace quorvane {
namespace {

using std::chrono::seconds;

// The whole seconds that WallTime holds: 1677 to 2262.
constexpr std::chrono::sys_seconds kEarliest = std::chrono::ceil<seconds>(WallTime::min());
constexpr std::chrono::sys_seconds kLatest = std::chrono::floor<seconds>(WallTime::max());

void appendDigits(std::string& text, unsigned value, int count) {
    text.append(static_cast<std::size_t>(count), '0');
    for (auto place = text.rbegin(); value != 0; ++place, value /= 10)
        *place = static_cast<char>('0' + value % 10);
}

// Cursor over the text; the first mismatch clears `fits`.
struct Reader {
    std::string_view rest;
    bool fits = true;

    unsigned digits(std::size_t count, unsigned greatest) {
        unsigned value = 0;
        for (std::size_t index = 0; index < count; ++index) {
            const char digit = take();
            fits = fits && digit >= '0' && digit <= '9';
            value = value * 10 + static_cast<unsigned>(digit - '0');
        }
        fits = fits && value <= greatest;
        return value;
    }
    void literal(char expected) { fits = fits && take() == expected; }
    char take() {
        if (rest.empty()) {
            fits = false;
            return '\0';
        }
        const char first = rest.front();
        rest.remove_prefix(1);
        return first;
    }
};

seconds readOffset(Reader& reader) {
    const char sign = reader.take();
    if (sign == 'Z') return seconds{0};
    reader.fits = reader.fits && (sign == '+' || sign == '-');
    const unsigned hours = reader.digits(2, 23);
    reader.literal(':');
    const unsigned minutes = reader.digits(2, 59);
    const seconds offset = std::chrono::hours{hours} + std::chrono::minutes{minutes};
    return sign == '-' ? -offset : offset;
}

}  // namespace

std::string iso8601Text(WallTime time) {
    const auto wholeSeconds = std::chrono::floor<seconds>(time);
    const auto day = std::chrono::floor<std::chrono::days>(wholeSeconds);
    const std::chrono::year_month_day date{day};
    const std::chrono::hh_mm_ss clock{wholeSeconds - day};
    std::string text;
    appendDigits(text, static_cast<unsigned>(static_cast<int>(date.year())), 4);
    text += '-';
    appendDigits(text, static_cast<unsigned>(date.month()), 2);
    text += '-';
    appendDigits(text, static_cast<unsigned>(date.day()), 2);
    text += 'T';
    appendDigits(text, static_cast<unsigned>(clock.hours().count()), 2);
    text += ':';
    appendDigits(text, static_cast<unsigned>(clock.minutes().count()), 2);
    text += ':';
    appendDigits(text, static_cast<unsigned>(clock.seconds().count()), 2);
    text += 'Z';
    return text;
}

std::optional<WallTime> wallTimeFromISO8601(std::string_view text) {
    Reader reader{text};
    const unsigned year = reader.digits(4, 9999);
    reader.literal('-');
    const unsigned month = reader.digits(2, 12);
    reader.literal('-');
    const unsigned day = reader.digits(2, 31);
    reader.literal('T');
    seconds clock = std::chrono::hours{reader.digits(2, 23)};
    reader.literal(':');
    clock += std::chrono::minutes{reader.digits(2, 59)};
    reader.literal(':');
    clock += seconds{reader.digits(2, 59)};
    const seconds offset = readOffset(reader);
    if (!reader.fits || !reader.rest.empty()) return std::nullopt;

    const std::chrono::year_month_day date{std::chrono::year{static_cast<int>(year)},
                                           std::chrono::month{month}, std::chrono::day{day}};
    if (!date.ok()) return std::nullopt;
    const std::chrono::sys_seconds time = std::chrono::sys_days{date} + clock - offset;
    return WallTime{std::clamp(time, kEarliest, kLatest)};
}

}  // namespace quorvane

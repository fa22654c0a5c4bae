#include "AddOnKit/life/DurationText.hpp"

#include <charconv>

#include "platform/Seconds.hpp"

namespace quorvane {

std::string durationText(Duration duration) {
    char digits[32];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), secondsOf(duration),
                                   std::chars_format::fixed)
                         .ptr;
    std::string text{std::begin(digits), end};
    if (text.find('.') == text.npos) text += ".0";
    return text + " seconds";
}

}  // namespace quorvane

#include "AddOnKit/life/DurationText.hpp"

#include <charconv>

namespace quorvane {

std::string durationText(Duration duration) {
    const double seconds = std::chrono::duration<double>(duration).count();
    char digits[32];
    const auto end =
        std::to_chars(std::begin(digits), std::end(digits), seconds, std::chars_format::fixed).ptr;
    std::string text{std::begin(digits), end};
    if (text.find('.') == text.npos) text += ".0";
    return text + " seconds";
}

}  // namespace quorvane

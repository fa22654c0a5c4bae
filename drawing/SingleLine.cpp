#include "drawing/SingleLine.hpp"

#include "platform/Character.hpp"

namespace quorvane {
namespace {

constexpr std::string_view kReplacement = "\uFFFD";
constexpr std::string_view kEllipsis = "…";

constexpr bool breaksLine(std::uint32_t code) {
    return isControl(code) || code == 0x2028 || code == 0x2029;
}

}  // namespace

std::string singleLine(std::string_view text) {
    std::string line;
    std::size_t place = 0;
    for (std::size_t count = 0; place < text.size(); ++count) {
        if (count == kLongestLine) return line.append(kEllipsis);
        const Character character = characterAt(text, place);
        if (!character.isValid)
            line += kReplacement;
        else if (breaksLine(character.code))
            line += ' ';
        else
            line += text.substr(place, character.length);
        place += character.length;
    }
    return line;
}

}  // namespace quorvane

#include "lockers/KdeSettings.hpp"

#include <charconv>

#include "platform/KeyFile.hpp"

namespace quorvane {
namespace {

constexpr double kUsualPoints = 10;  // of KDE's font
constexpr double kUnitOfPoint = 2;

// The number at the start of the text, or 0.
double numberIn(std::string_view text) {
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

}  // namespace

// The font's value is such as "Noto Sans,10,-1,5,50,0,0,0,0,0".
double greeterUnit(std::string_view settings) {
    const std::string_view font = keyFileValue(settings, "[General]", "font").value_or("");
    const std::size_t comma = font.find(',');
    const double points = comma == font.npos ? 0 : numberIn(font.substr(comma + 1));
    return kUnitOfPoint * (points > 0 ? points : kUsualPoints);
}

std::optional<std::int32_t> kdeAnimates(std::string_view settings) {
    const auto factor = keyFileValue(settings, "[KDE]", "AnimationDurationFactor");
    if (!factor) return std::nullopt;
    return numberIn(*factor) > 0 ? 1 : 0;
}

}  // namespace quorvane

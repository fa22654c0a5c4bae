#include "lockers/GreeterZones.hpp"

#include <cmath>

namespace quorvane {
namespace {

// Plasma's Breeze lock screen, seen at several sizes and fonts with Plasma 5.27, in its units.
// The user's picture ends at the middle line, which is below the screen's. The name, the prompt,
// the media controls and the buttons follow. The clock is halfway between the picture and the
// top.
constexpr double kMiddleLine = 1.5;
constexpr double kPictureHeight = 9;
constexpr double kBelowPicture = 15;
constexpr double kPromptWidth = 17;
constexpr double kFooter = 2.5;   // the virtual keyboard, the layout, the battery
constexpr Size kClock{680, 150};  // its font, in pixels, is always the same

// swaylock's ring has a diameter of 120, hyprlock's field in its example a fifth of the screen's
// width, 20 below the middle.
constexpr Size kRing{400, 190};

Rect centred(const Rect& output, double width, double top, double bottom) {
    return {output.midX() - width / 2, top, width, bottom - top};
}

Rect turnedOver(const Rect& rect) { return {rect.x, -rect.maxY(), rect.width, rect.height}; }

}  // namespace

std::vector<Rect> greeterZones(const Rect& output, std::optional<double> unitOfPlasma) {
    if (!unitOfPlasma)
        return {centred(output, kRing.width, output.midY() - kRing.height / 2,
                        output.midY() + kRing.height / 2)};
    const double unit = *unitOfPlasma;
    const double middle = output.midY() + kMiddleLine * unit;
    const double picture = middle - kPictureHeight * unit;
    const double clock = (output.minY() + picture) / 2;
    return {
        centred(output, kClock.width, clock - kClock.height / 2, clock + kClock.height / 2),
        centred(output, kPromptWidth * unit, picture, middle + kBelowPicture * unit),
        {output.x, output.maxY() - kFooter * unit, output.width, kFooter * unit},
    };
}

Screen screenOfOutput(const Rect& output, double scale, std::optional<double> unit) {
    Screen screen{turnedOver(output), scale, {}};
    for (const Rect& zone : greeterZones(output, unit))
        screen.keepClear.push_back(turnedOver(zone));
    return screen;
}

PixelRect placeOnOutput(const Rect& frame, const Screen& screen) {
    const int left = static_cast<int>(std::lround(frame.minX() - screen.frame.minX()));
    const int top = static_cast<int>(std::lround(screen.frame.maxY() - frame.maxY()));
    return {left, top, static_cast<int>(std::ceil(frame.width)),
            static_cast<int>(std::ceil(frame.height))};
}

}  // namespace quorvane

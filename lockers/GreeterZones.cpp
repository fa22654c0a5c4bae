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

Rect centred(const Rect& output, double width, double top, double bottom) {
    return {output.midX() - width / 2, top, width, bottom - top};
}

Rect turnedOver(const Rect& rect) { return {rect.x, -rect.maxY(), rect.width, rect.height}; }

}  // namespace

std::vector<Rect> greeterZones(const Rect& output, double unit) {
    const double middle = output.midY() + kMiddleLine * unit;
    const double picture = middle - kPictureHeight * unit;
    const double clock = (output.minY() + picture) / 2;
    return {
        centred(output, kClock.width, clock - kClock.height / 2, clock + kClock.height / 2),
        centred(output, kPromptWidth * unit, picture, middle + kBelowPicture * unit),
        {output.x, output.maxY() - kFooter * unit, output.width, kFooter * unit},
    };
}

Screen screenOfOutput(const Rect& output, double scale, double unit) {
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

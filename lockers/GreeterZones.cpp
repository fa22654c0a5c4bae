#include "lockers/GreeterZones.hpp"

#include <cmath>

namespace quorvane {
namespace {

// Plasma's Breeze lock screen, seen with Plasma 5.27 and 6.7. The user's picture ends at the middle
// line, which is 27 below the screen's. The name, the prompt, the media controls and the buttons
// follow. The clock stands halfway between the picture and the top.
constexpr double kMiddleLine = 27;
constexpr double kPictureHeight = 175;
constexpr double kBelowPicture = 250;
constexpr double kPromptWidth = 330;
constexpr Size kClock{520, 170};
constexpr double kFooter = 48;  // the virtual keyboard, the layout, the battery

Rect centred(const Rect& output, double width, double top, double bottom) {
    return {output.midX() - width / 2, top, width, bottom - top};
}

Rect turnedOver(const Rect& rect) { return {rect.x, -rect.maxY(), rect.width, rect.height}; }

}  // namespace

std::vector<Rect> greeterZones(const Rect& output) {
    const double middle = output.midY() + kMiddleLine;
    const double clock = (output.minY() + middle - kPictureHeight) / 2;
    return {
        centred(output, kClock.width, clock - kClock.height / 2, clock + kClock.height / 2),
        centred(output, kPromptWidth, middle - kPictureHeight, middle + kBelowPicture),
        {output.x, output.maxY() - kFooter, output.width, kFooter},
    };
}

Screen screenOfOutput(const Rect& output, double scale) {
    Screen screen{turnedOver(output), scale, {}};
    for (const Rect& zone : greeterZones(output)) screen.keepClear.push_back(turnedOver(zone));
    return screen;
}

PixelRect placeOnOutput(const Rect& frame, const Screen& screen) {
    const int left = static_cast<int>(std::lround(frame.minX() - screen.frame.minX()));
    const int top = static_cast<int>(std::lround(screen.frame.maxY() - frame.maxY()));
    return {left, top, static_cast<int>(std::ceil(frame.width)),
            static_cast<int>(std::ceil(frame.height))};
}

}  // namespace quorvane

// The contents of the card in another toolkit: the add-on's own measures and marquee, symbols as
// plain polygons, and colours that look like its glass. The glass itself, the shadow and the
// effects of presses are left out, which favours the rivals.
#pragma once

#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "AddOnKit/card/MarqueeText.hpp"
#include "AddOnKit/card/PlayerGeometry.hpp"
#include "AddOnKit/card/PlayerLayout.hpp"
#include "AddOnKit/card/TimeFormatting.hpp"

namespace quorvane::rivals {

inline constexpr char kFontFamily[] = "Inter";
inline constexpr char kArtist[] = "Harbour Lights";
inline constexpr double kDuration = 3000;  // seconds
inline constexpr double kVolume = 0.64;
inline constexpr Color kBackdrop{0.2, 0.4, 0.6};
inline constexpr Color kPanel{0.125, 0.227, 0.341};

// Whole points, so that an area to redraw begins and ends on whole pixels.
inline constexpr Rect kCard{0, 0, PlayerLayout::kCardWidth, PlayerLayout::kCardHeight};

struct Bar {
    Rect frame;
    double opacity;
};

// The track and its filled part, with round ends.
inline std::vector<Bar> barsOf(const Rect& track, double fraction, double opacity) {
    return {{track, PlayerLayout::kTrackOpacity},
            {{track.x, track.y, track.width * fraction, track.height}, opacity}};
}

inline std::vector<Bar> progressBars(const PlayerGeometry& geometry, double position) {
    return barsOf(geometry.progress, position / kDuration, 0.55);
}

inline std::vector<Bar> volumeBars(const PlayerGeometry& geometry) {
    const Rect& row = geometry.volume;
    return barsOf({row.x, row.midY() - 3, row.width, 6}, kVolume, 0.8);
}

// White lines, joined to the first point and filled unless they have a pen.
struct Outline {
    std::vector<Point> points;
    double opacity = 1;
    double pen = 0;  // points
};

namespace detail {

// Around the middle of a frame; 1 is the symbol's size.
inline Outline placed(std::vector<Point> points, const Rect& frame, double size, double opacity,
                      double pen = 0) {
    for (Point& point : points)
        point = {frame.midX() + point.x * size, frame.midY() + point.y * size};
    return {std::move(points), opacity, pen * size};
}

inline std::vector<Point> arc(double radius, double spread) {
    std::vector<Point> points;
    for (double angle = -spread; angle <= spread; angle += spread / 8)
        points.push_back({-0.15 + radius * std::cos(angle), radius * std::sin(angle)});
    return points;
}

inline std::vector<Point> heart() {
    std::vector<Point> points;
    for (int i = 0; i <= 48; ++i) {
        const double t = std::numbers::pi * i / 24;
        points.push_back({0.028 * 16 * std::pow(std::sin(t), 3),
                          -0.028 * (13 * std::cos(t) - 5 * std::cos(2 * t) - 2 * std::cos(3 * t) -
                                    std::cos(4 * t))});
    }
    return points;
}

}  // namespace detail

inline std::vector<Outline> symbols(const PlayerGeometry& geometry) {
    using namespace PlayerLayout;
    std::vector<Outline> all;
    for (const double x : {-0.65, 0.02}) {
        all.push_back(detail::placed({{x + 0.63, -0.42}, {x, 0}, {x + 0.63, 0.42}},
                                     geometry.previous, kSideSymbolSize, 1));
        all.push_back(detail::placed({{-x - 0.63, -0.42}, {-x, 0}, {-x - 0.63, 0.42}},
                                     geometry.next, kSideSymbolSize, 1));
    }
    for (const double x : {-0.294, 0.088})
        all.push_back(
            detail::placed({{x, -0.382}, {x + 0.206, -0.382}, {x + 0.206, 0.382}, {x, 0.382}},
                           geometry.playPause, kPlaySymbolSize, 1));
    all.push_back(detail::placed(detail::heart(), geometry.heart, kHeartSymbolSize, 0.7, 0.085));
    constexpr double kSpeaker = 17;
    std::vector<Point> body{{-0.5, -0.18}, {-0.3, -0.18}, {0, -0.4},
                            {0, 0.4},      {-0.3, 0.18},  {-0.5, 0.18}};
    Rect quiet = geometry.quietSpeaker.movedBy(0.25 * kSpeaker, 0);
    all.push_back(detail::placed(body, quiet, kSpeaker, kSpeakerOpacity));
    Rect loud = geometry.loudSpeaker.movedBy(-0.13 * kSpeaker, 0);
    all.push_back(detail::placed(body, loud, kSpeaker, kSpeakerOpacity));
    for (const double radius : {0.28, 0.49, 0.7})
        all.push_back(detail::placed(detail::arc(radius, 0.72), loud.movedBy(0.13 * kSpeaker, 0),
                                     kSpeaker, kSpeakerOpacity, 0.085));
    return all;
}

// The area that changes once a second.
inline Rect clockArea(const PlayerGeometry& geometry) {
    const Rect& bar = geometry.progress;
    return {bar.x, bar.y, bar.width, geometry.elapsed.maxY() - bar.y};
}

inline Instant now() { return std::chrono::steady_clock::now(); }
inline double secondsSince(Instant start) {
    return std::chrono::duration<double>(now() - start).count();
}

}  // namespace quorvane::rivals

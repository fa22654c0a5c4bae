#include "AddOnKit/card/PlayerGeometry.hpp"

#include "AddOnKit/card/PlayerLayout.hpp"

namespace quorvane {
namespace {

using namespace PlayerLayout;

constexpr double kLeft = kContentInsets.leading;
constexpr double kRight = kCardWidth - kContentInsets.trailing;
constexpr double kTop = kContentInsets.top;
constexpr double kBottom = kCardHeight - kContentInsets.bottom;

// Fields are taller than their line of text, so that marks above and below letters have room.
constexpr double kTrackFieldHeight = 28;
constexpr double kTitleMiddle = kTop + 11;
constexpr double kArtistMiddle = kTop + 33;
// The position cannot be dragged, so its bar is thinner than the volume's.
constexpr double kProgressThickness = 4;
constexpr double kTimeFieldHeight = 20;
constexpr double kTimeFieldWidth = 80;
constexpr double kTimeSpacing = 12;  // from the bar to the middle of the times
constexpr double kButtonSpacing = 26;
constexpr double kTransportMiddle = 146;  // equally far from the times and the volume

constexpr Rect centred(double x, double y, double width, double height) {
    return {x - width / 2, y - height / 2, width, height};
}

}  // namespace

PlayerGeometry PlayerGeometry::make(bool showsHeart, bool isRightToLeft) {
    PlayerGeometry g;
    g.artwork = {kLeft, kTop, kArtworkSide, kArtworkSide};

    const double textLeft = g.artwork.maxX() + kArtworkSpacing;
    // The heart's symbol, not its button, ends at the content's edge.
    const double heartMiddle = kRight - kHeartSymbolSize / 2;
    g.heart =
        centred(heartMiddle, (kTitleMiddle + kArtistMiddle) / 2, kSideButtonSide, kSideButtonSide);
    const double textRight = showsHeart ? g.heart.x : kRight;
    const double textWidth = textRight - textLeft;
    g.title = {textLeft, kTitleMiddle - kTrackFieldHeight / 2, textWidth, kTrackFieldHeight};
    g.titleOnly = g.title.movedBy(0, (kArtistMiddle - kTitleMiddle) / 2);
    g.artist = {textLeft, kArtistMiddle - kTrackFieldHeight / 2, textWidth, kTrackFieldHeight};

    g.progress = {textLeft, g.artwork.maxY() - kProgressThickness, kRight - textLeft,
                  kProgressThickness};
    const double timeTop = g.progress.maxY() + kTimeSpacing - kTimeFieldHeight / 2;
    g.elapsed = {textLeft, timeTop, kTimeFieldWidth, kTimeFieldHeight};
    g.remaining = {kRight - kTimeFieldWidth, timeTop, kTimeFieldWidth, kTimeFieldHeight};

    const double volumeMiddle = kBottom - kVolumeRowHeight / 2;
    g.quietSpeaker = {kLeft, volumeMiddle - kSpeakerWidth / 2, kSpeakerWidth, kSpeakerWidth};
    g.loudSpeaker = {kRight - kSpeakerWidth, g.quietSpeaker.y, kSpeakerWidth, kSpeakerWidth};
    const double sliderLeft = g.quietSpeaker.maxX() + kSpeakerSpacing;
    g.volume = {sliderLeft, kBottom - kVolumeRowHeight,
                g.loudSpeaker.x - kSpeakerSpacing - sliderLeft, kVolumeRowHeight};

    if (isRightToLeft)
        for (Rect* rect : {&g.artwork, &g.title, &g.titleOnly, &g.artist, &g.heart, &g.progress,
                           &g.elapsed, &g.remaining, &g.quietSpeaker, &g.volume, &g.loudSpeaker})
            rect->x = kCardWidth - rect->maxX();

    constexpr double kMiddle = kCardWidth / 2;
    constexpr double kReach = kPlayButtonSide / 2 + kButtonSpacing + kSideButtonSide / 2;
    g.previous = centred(kMiddle - kReach, kTransportMiddle, kSideButtonSide, kSideButtonSide);
    g.playPause = centred(kMiddle, kTransportMiddle, kPlayButtonSide, kPlayButtonSide);
    g.next = centred(kMiddle + kReach, kTransportMiddle, kSideButtonSide, kSideButtonSide);
    return g;
}

}  // namespace quorvane

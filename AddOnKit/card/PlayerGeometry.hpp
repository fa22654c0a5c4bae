// Where the card's elements stand, in points from the card's top left.
#pragma once

#include "drawing/Geometry.hpp"

namespace quorvane {

struct PlayerGeometry {
    Rect artwork;
    Rect title;        // of the texts: the line's field
    Rect lonelyTitle;  // without an artist below it
    Rect artist;
    Rect heart;
    Rect progress;
    Rect elapsed;
    Rect remaining;
    Rect previous;
    Rect playPause;
    Rect next;
    Rect quietSpeaker;
    Rect volume;
    Rect loudSpeaker;

    // The heart takes room from the texts only while it is shown. Right to left everything is
    // mirrored but the transport buttons: their arrows show the tape's direction, not the text's.
    static PlayerGeometry make(bool showsHeart, bool isRightToLeft);
};

}  // namespace quorvane

// Positions of the card's elements, in points from the card's top left.
#pragma once

#include "drawing/Geometry.hpp"

namespace quorvane {

struct PlayerGeometry {
    Rect artwork;
    Rect title;      // for texts: the field of the line
    Rect titleOnly;  // the title's field when there is no artist below it
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

    // The heart takes room from the texts only while it is shown. In right-to-left layouts
    // everything is mirrored except the transport buttons: their arrows show the tape's direction,
    // not the text's.
    static PlayerGeometry make(bool showsHeart, bool isRightToLeft);
};

}  // namespace quorvane

// Pictures as PNG files, still and animated.
#pragma once

#include "platform/Bytes.hpp"
#include "platform/linux/drawing/CairoHandles.hpp"

namespace quorvane {

Bytes encodePNG(cairo_surface_t* picture);

// An animation from frames that are added one by one; stores only the area in which a frame differs
// from the one before. Loops without end.
class AnimatedPNG {
public:
    explicit AnimatedPNG(double framesPerSecond) : framesPerSecond_(framesPerSecond) {}

    // An image surface of the same size as the first.
    void add(CairoSurface frame);

    // Makes the last added frame the picture that viewers without animation show; the first
    // frame when this is never called.
    void keepLastAsStill();

    Bytes finish() const;

private:
    struct Frame {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        int count = 1;  // duration in frames
        Bytes png;
    };
    double framesPerSecond_;
    std::vector<Frame> frames_;
    CairoSurface last_;
    Bytes still_;  // a PNG file, shown only where nothing is animated
};

}  // namespace quorvane

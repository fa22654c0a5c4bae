// Writes still and animated PNG files.
#pragma once

#include "platform/Bytes.hpp"
#include "platform/linux/drawing/CairoHandles.hpp"

namespace quorvane {

Bytes encodePNG(cairo_surface_t* picture);

// An endless animation. Stores of each added frame only the area that differs from the previous
// frame.
class AnimatedPNG {
public:
    explicit AnimatedPNG(double framesPerSecond) : framesPerSecond_(framesPerSecond) {}

    // An image surface of the same size as the first.
    void add(CairoSurface frame);

    // Makes the last added frame the still picture, which viewers without animation show. The
    // default is the first frame.
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
    Bytes still_;  // a PNG file for viewers without animation
};

}  // namespace quorvane

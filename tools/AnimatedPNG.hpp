// Pictures as PNG files, still and animated.
#pragma once

#include "platform/Bytes.hpp"
#include "platform/linux/CairoHandles.hpp"

namespace quorvane {

Bytes encodePNG(cairo_surface_t* picture);

// Takes the frames one by one and keeps only what changes from each to the next. Repeats for ever.
class AnimatedPNG {
public:
    explicit AnimatedPNG(double framesPerSecond) : framesPerSecond_(framesPerSecond) {}

    // An image surface of the same size as the first.
    void add(CairoSurface frame);
    Bytes finish() const;

private:
    struct Frame {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        int count = 1;  // how many frames long it stays
        Bytes png;
    };
    double framesPerSecond_;
    std::vector<Frame> frames_;
    CairoSurface last_;
};

}  // namespace quorvane

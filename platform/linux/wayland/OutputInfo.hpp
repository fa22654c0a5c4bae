// An output's place and scale, gathered from its events.
#pragma once

#include <functional>

#include "drawing/Geometry.hpp"
#include "platform/linux/wayland/WaylandHandles.hpp"

namespace quorvane {

class OutputInfo {
public:
    // `changed` is called once all events of a change have arrived.
    OutputInfo(Wayland<wl_output> output, std::uint32_t name, std::function<void()> changed);
    OutputInfo(const OutputInfo&) = delete;
    OutputInfo& operator=(const OutputInfo&) = delete;

    // The output's place becomes known some time after this call.
    void describeWith(zxdg_output_manager_v1* manager);

    wl_output* output() const { return output_.get(); }
    std::uint32_t name() const { return name_; }
    bool isKnown() const { return !place_.isEmpty(); }
    // Logical pixels.
    const Rect& place() const { return place_; }
    // Pixels per logical pixel; a fraction only if pictures can be scaled to fit. It is the ratio
    // of the output's two sizes, because the compositor's fractional-scale event would come only
    // after the first picture.
    double scale(bool mayBeFraction) const;

private:
    static const wl_output_listener kListener;
    static const zxdg_output_v1_listener kLogicalListener;

    Wayland<wl_output> output_;
    Wayland<zxdg_output_v1> description_;
    std::uint32_t name_;
    std::function<void()> changed_;
    int wholeScale_ = 1;
    Size pixels_;  // its mode's
    Rect place_;
};

}  // namespace quorvane

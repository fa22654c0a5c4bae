#include "platform/linux/wayland/OutputInfo.hpp"

#include <cmath>
#include <utility>

namespace quorvane {
namespace {

constexpr double kScaleSteps = 120;  // per unit: the steps of the protocol of fractional scales

OutputInfo& outputOf(void* data) { return *static_cast<OutputInfo*>(data); }

}  // namespace

const wl_output_listener OutputInfo::kListener{
    .geometry =
        [](void* data, wl_output*, int x, int y, int, int, int, const char*, const char*,
           int transform) {
            outputOf(data).mode_.x = x;
            outputOf(data).mode_.y = y;
            // Each odd transform is a turn by a quarter, mirrored or not.
            outputOf(data).isTurned_ = transform % 2 != 0;
        },
    .mode =
        [](void* data, wl_output*, std::uint32_t flags, int width, int height, int) {
            if ((flags & WL_OUTPUT_MODE_CURRENT) == 0) return;
            outputOf(data).mode_.width = width;
            outputOf(data).mode_.height = height;
        },
    .done =
        [](void* data, wl_output*) {
            if (outputOf(data).isKnown()) outputOf(data).changed_();
        },
    .scale = [](void* data, wl_output*,
                int scale) { outputOf(data).wholeScale_ = std::max(1, scale); },
    .name = nullptr,
    .description = nullptr,
};

const zxdg_output_v1_listener OutputInfo::kLogicalListener{
    .logical_position =
        [](void* data, zxdg_output_v1*, int x, int y) {
            outputOf(data).logical_.x = x;
            outputOf(data).logical_.y = y;
        },
    .logical_size =
        [](void* data, zxdg_output_v1*, int width, int height) {
            outputOf(data).logical_.width = width;
            outputOf(data).logical_.height = height;
        },
    .done = [](void*, zxdg_output_v1*) {},
    .name = [](void*, zxdg_output_v1*, const char*) {},
    .description = [](void*, zxdg_output_v1*, const char*) {},
};

OutputInfo::OutputInfo(Wayland<wl_output> output, std::uint32_t name, std::function<void()> changed)
    : output_(std::move(output)), name_(name), changed_(std::move(changed)) {
    wl_output_add_listener(output_.get(), &kListener, this);
}

void OutputInfo::describeWith(zxdg_output_manager_v1* manager) {
    if (description_) return;
    description_.reset(zxdg_output_manager_v1_get_xdg_output(manager, output_.get()));
    zxdg_output_v1_add_listener(description_.get(), &kLogicalListener, this);
}

PixelRect OutputInfo::place() const {
    if (description_) return logical_;
    const PixelRect place{mode_.x, mode_.y, mode_.width / wholeScale_, mode_.height / wholeScale_};
    return isTurned_ ? PixelRect{place.x, place.y, place.height, place.width} : place;
}

double OutputInfo::scale() const {
    const int pixels = isTurned_ ? mode_.height : mode_.width;
    if (!hasFractions_ || logical_.isEmpty() || pixels <= 0) return wholeScale_;
    return std::max(1.0, std::round(kScaleSteps * pixels / logical_.width)) / kScaleSteps;
}

}  // namespace quorvane

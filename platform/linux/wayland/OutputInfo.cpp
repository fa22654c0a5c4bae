#include "platform/linux/wayland/OutputInfo.hpp"

#include <cmath>
#include <utility>

namespace quorvane {
namespace {

constexpr double kScaleSteps = 120;  // per unit: the steps of the protocol of fractional scales

OutputInfo& outputOf(void* data) { return *static_cast<OutputInfo*>(data); }

}  // namespace

const wl_output_listener OutputInfo::kListener{
    .geometry = [](void*, wl_output*, int, int, int, int, int, const char*, const char*, int) {},
    .mode =
        [](void* data, wl_output*, std::uint32_t flags, int width, int height, int) {
            if ((flags & WL_OUTPUT_MODE_CURRENT) == 0) return;
            outputOf(data).pixels_ = {static_cast<double>(width), static_cast<double>(height)};
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
            outputOf(data).place_.x = x;
            outputOf(data).place_.y = y;
        },
    .logical_size =
        [](void* data, zxdg_output_v1*, int width, int height) {
            outputOf(data).place_.width = width;
            outputOf(data).place_.height = height;
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
    description_.reset(zxdg_output_manager_v1_get_xdg_output(manager, output_.get()));
    zxdg_output_v1_add_listener(description_.get(), &kLogicalListener, this);
}

double OutputInfo::scale(bool mayBeFraction) const {
    if (!mayBeFraction || pixels_ == Size{}) return wholeScale_;
    // The ratio of the areas, which is the same for a rotated output.
    const double square = pixels_.width * pixels_.height / (place_.width * place_.height);
    return std::max(1.0, std::round(kScaleSteps * std::sqrt(square))) / kScaleSteps;
}

}  // namespace quorvane

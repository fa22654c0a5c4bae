#include "platform/linux/wayland/card/SharedPictures.hpp"

#include <algorithm>
#include <utility>

namespace quorvane {
namespace {

bool isIn(std::span<const PixelRect> parts, const PixelRect& part) {
    return std::ranges::any_of(parts, [&](const PixelRect& each) { return each.contains(part); });
}

}  // namespace

std::unique_ptr<SharedPictures> SharedPictures::make(int width, int height) {
    if (width <= 0 || height <= 0) return nullptr;
    auto memory = SharedMemory::make(static_cast<std::size_t>(width) *
                                     static_cast<std::size_t>(height) * kBytesPerPixel * kPictures);
    if (!memory) return nullptr;
    return std::unique_ptr<SharedPictures>{new SharedPictures{std::move(memory), width, height}};
}

SharedPictures::SharedPictures(std::unique_ptr<SharedMemory> memory, int width, int height)
    : memory_(std::move(memory)),
      pixels_(reinterpret_cast<std::uint32_t*>(memory_->data())),
      width_(width),
      height_(height) {
    for (std::uint32_t* start = pixels_; Picture & picture : pictures_) {
        picture.surface.reset(cairo_image_surface_create_for_data(
            reinterpret_cast<unsigned char*>(start), CAIRO_FORMAT_ARGB32, width, height,
            width * kBytesPerPixel));
        start += pixelCount();
    }
}

std::size_t SharedPictures::pixelCount() const {
    return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
}

std::optional<std::uint32_t> SharedPictures::next(std::span<const PixelRect> redrawn) {
    const auto found = std::ranges::find(pictures_, false, &Picture::isRead);
    if (found == pictures_.end()) return std::nullopt;
    const auto picture = static_cast<std::uint32_t>(found - pictures_.begin());
    const std::uint32_t* const from = pixels_ + last_ * pixelCount();
    std::uint32_t* const to = pixels_ + picture * pixelCount();
    for (const PixelRect& part : std::exchange(found->stale, {})) {
        if (isIn(redrawn, part)) continue;
        for (int y = part.y; y < part.maxY(); ++y) {
            const std::ptrdiff_t place = std::ptrdiff_t{y} * width_ + part.x;
            std::copy_n(from + place, part.width, to + place);
        }
    }
    return picture;
}

void SharedPictures::shown(std::uint32_t picture, std::span<const PixelRect> parts) {
    cairo_surface_flush(surface(picture));
    last_ = picture;
    pictures_[picture].isRead = true;
    for (Picture& other : pictures_) {
        if (&other == &pictures_[picture]) continue;
        for (const PixelRect& part : parts) {
            const PixelRect inside = part.intersection(bounds());
            if (!inside.isEmpty() && !isIn(other.stale, inside)) other.stale.push_back(inside);
        }
    }
}

void SharedPictures::released(std::uint32_t picture) {
    if (picture < pictures_.size()) pictures_[picture].isRead = false;
}

}  // namespace quorvane

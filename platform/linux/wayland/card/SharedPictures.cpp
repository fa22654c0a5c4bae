#include "platform/linux/wayland/card/SharedPictures.hpp"

#include <fcntl.h>
#include <sys/mman.h>

#include <algorithm>
#include <utility>

namespace quorvane {

std::unique_ptr<SharedPictures> SharedPictures::make(int width, int height) {
    if (width <= 0 || height <= 0) return nullptr;
    const std::size_t size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                             kBytesAPixel * kPictures;
    FileDescriptor memory{memfd_create("quorvane-card", MFD_CLOEXEC | MFD_ALLOW_SEALING)};
    if (!memory || ftruncate(memory.get(), static_cast<off_t>(size)) != 0) return nullptr;
    // The compositor then knows that its reads cannot fail.
    fcntl(memory.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_SEAL);
    void* const pixels = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, memory.get(), 0);
    if (pixels == MAP_FAILED) return nullptr;
    return std::unique_ptr<SharedPictures>{
        new SharedPictures{std::move(memory), static_cast<std::uint32_t*>(pixels), width, height}};
}

SharedPictures::SharedPictures(FileDescriptor memory, std::uint32_t* pixels, int width, int height)
    : memory_(std::move(memory)), pixels_(pixels), width_(width), height_(height) {
    for (std::uint32_t* start = pixels_; Picture & picture : pictures_) {
        picture.surface.reset(cairo_image_surface_create_for_data(
            reinterpret_cast<unsigned char*>(start), CAIRO_FORMAT_ARGB32, width, height,
            width * kBytesAPixel));
        start += pixelCount();
    }
}

SharedPictures::~SharedPictures() {
    for (Picture& picture : pictures_) picture.surface.reset();
    munmap(pixels_, pixelCount() * kPictures * kBytesAPixel);
}

std::size_t SharedPictures::pixelCount() const {
    return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
}

std::optional<std::uint32_t> SharedPictures::next() {
    const auto found = std::ranges::find(pictures_, false, &Picture::isRead);
    if (found == pictures_.end()) return std::nullopt;
    const auto picture = static_cast<std::uint32_t>(found - pictures_.begin());
    const std::uint32_t* const from = pixels_ + last_ * pixelCount();
    std::uint32_t* const to = pixels_ + picture * pixelCount();
    for (const PixelRect& part : std::exchange(found->stale, {}))
        for (int y = part.y; y < part.maxY(); ++y) {
            const std::ptrdiff_t place = std::ptrdiff_t{y} * width_ + part.x;
            std::copy_n(from + place, part.width, to + place);
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
            const bool isKnown = std::ranges::any_of(
                other.stale, [&](const PixelRect& each) { return each.contains(inside); });
            if (!isKnown && !inside.isEmpty()) other.stale.push_back(inside);
        }
    }
}

void SharedPictures::released(std::uint32_t picture) {
    if (picture < pictures_.size()) pictures_[picture].isRead = false;
}

}  // namespace quorvane

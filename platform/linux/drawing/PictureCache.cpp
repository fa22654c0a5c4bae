#include "platform/linux/drawing/PictureCache.hpp"

#include <algorithm>

#include "drawing/pictures/EncodedImage.hpp"

namespace quorvane {
namespace {

constexpr std::size_t kKeptPictures = 4;  // the current and the last one, at two scales

CairoSurface decode(const Image& image, PixelSize size) {
    const auto* const encoded = dynamic_cast<const EncodedImage*>(&image);
    return encoded ? decodePicture(encoded->bytes(), size) : nullptr;
}

void setState(const ImageRef& image, bool isDecoded) {
    if (image) image->state().set(isDecoded ? Image::State::ready : Image::State::undecodable);
}

}  // namespace

cairo_surface_t* PictureCache::picture(const ImageRef& image, PixelSize size) {
    std::erase_if(recent_, [](const auto& entry) { return entry->image.expired(); });
    const auto isOfImage = [&](const auto& entry) { return entry->image.lock() == image; };
    auto found = std::ranges::find_if(
        recent_, [&](const auto& entry) { return entry->size == size && isOfImage(entry); });
    if (found == recent_.end()) {
        found = recent_.insert(recent_.begin(), std::make_shared<Entry>(Entry{image, size}));
        start(*found, image);
        if (recent_.size() > kKeptPictures) recent_.pop_back();
    }
    recent_.splice(recent_.begin(), recent_, found);
    const auto decoded = std::ranges::find_if(
        recent_, [&](const auto& entry) { return entry->surface && isOfImage(entry); });
    return decoded == recent_.end() ? nullptr : (*decoded)->surface.get();
}

void PictureCache::start(const std::shared_ptr<Entry>& entry, const ImageRef& image) {
    const auto action = [this, image, size = entry->size, waiting = std::weak_ptr{entry},
                         mainThread = mainThread_] {
        // Shared, because a std::function must be copyable.
        const auto decoded = std::make_shared<CairoSurface>(decode(*image, size));
        mainThread.post([this, decoded, waiting] {
            const auto target = waiting.lock();
            if (!target) return;  // also if the cache is gone
            target->surface = std::move(*decoded);
            const bool isDecoded = target->surface != nullptr;
            const auto held = target->image.lock();  // a listener may release the image
            arrivals_.call();
            setState(held, isDecoded);
        });
    };
    if (queue_ && queue_->async(action)) return;
    entry->surface = decode(*image, entry->size);
    // Locked, because an observer of the state may release the image.
    setState(entry->image.lock(), entry->surface != nullptr);
}

}  // namespace quorvane

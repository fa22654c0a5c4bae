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

}  // namespace

PictureCache::PictureCache(std::unique_ptr<SerialQueue> queue, MainThread mainThread,
                           std::function<void()> arrived)
    : mainThread_(std::move(mainThread)),
      arrived_(std::make_shared<std::function<void()>>(std::move(arrived))),
      queue_(std::move(queue)) {}

void PictureCache::Entry::settle(CairoSurface decoded) {
    surface = std::move(decoded);
    // Held, because an observer of the state may release the image.
    if (const auto held = image.lock())
        held->state().set(surface ? Image::State::ready : Image::State::undecodable);
}

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
    const auto action = [image, size = entry->size, waiting = std::weak_ptr{entry},
                         mainThread = mainThread_, arrived = std::weak_ptr{arrived_}] {
        // Shared, because a std::function must be copyable.
        const auto decoded = std::make_shared<CairoSurface>(decode(*image, size));
        mainThread.post([decoded, waiting, arrived] {
            const auto target = waiting.lock();
            const auto listener = arrived.lock();
            if (!target || !listener) return;
            target->settle(std::move(*decoded));
            if (*listener) (*listener)();
        });
    };
    if (!queue_ || !queue_->async(action)) entry->settle(decode(*image, entry->size));
}

}  // namespace quorvane

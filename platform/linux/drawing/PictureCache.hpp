// Pictures decoded at the sizes they are shown in.
#pragma once

#include <functional>
#include <list>
#include <memory>

#include "drawing/Image.hpp"
#include "platform/MainThread.hpp"
#include "platform/SerialQueue.hpp"
#include "platform/linux/drawing/PictureDecoder.hpp"

namespace quorvane {

// Main thread only. Holds few pictures and only as many pixels as are shown; the encoded bytes
// belong to the image and go with it.
class PictureCache {
public:
    // With a queue pictures are decoded there, and `arrived` is called on the main thread for each.
    // Without one, or when the system refuses its thread, they are decoded at once.
    PictureCache() = default;
    PictureCache(std::unique_ptr<SerialQueue> queue, MainThread mainThread,
                 std::function<void()> arrived);

    // Valid until the next call. The image at another size while this one is being decoded; null
    // while there is none, and for an undecodable image. Sets the image's state.
    cairo_surface_t* picture(const ImageRef& image, PixelSize size);

private:
    struct Entry {
        std::weak_ptr<const Image> image;
        PixelSize size;
        CairoSurface surface{};  // null while it is being decoded, and if it cannot be

        void settle(CairoSurface decoded);
    };
    using Entries = std::list<std::shared_ptr<Entry>>;

    void start(const std::shared_ptr<Entry>& entry, const ImageRef& image);

    Entries recent_;  // the last used one first
    MainThread mainThread_;
    // Shared so that a picture that arrives late can tell whether the cache still exists.
    std::shared_ptr<std::function<void()>> arrived_;
    std::unique_ptr<SerialQueue> queue_;  // last: its running action ends before the rest goes
};

}  // namespace quorvane

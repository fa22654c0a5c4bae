// A cache of pictures decoded at the sizes they are shown in.
#pragma once

#include <functional>
#include <list>
#include <memory>

#include "drawing/Image.hpp"
#include "platform/Listeners.hpp"
#include "platform/MainThread.hpp"
#include "platform/SerialQueue.hpp"
#include "platform/linux/drawing/PictureDecoder.hpp"

namespace quorvane {

// Main thread only. Holds few pictures, with only the pixels that are shown. The image owns the
// encoded bytes.
class PictureCache {
public:
    // Decodes pictures on the queue. Without a queue, or when the system refuses its thread,
    // decodes synchronously.
    PictureCache() = default;
    PictureCache(std::unique_ptr<SerialQueue> queue, MainThread mainThread)
        : mainThread_(std::move(mainThread)), queue_(std::move(queue)) {}

    // Reports each picture that the queue has decoded.
    Handle observe(std::function<void()> arrived) { return arrivals_.add(std::move(arrived)); }

    // Valid until the next call. Returns the image at another size while this size is being
    // decoded; null if there is none, and for an undecodable image. Sets the image's state.
    cairo_surface_t* picture(const ImageRef& image, PixelSize size);

private:
    struct Entry {
        std::weak_ptr<const Image> image;
        PixelSize size;
        CairoSurface surface{};  // null while decoding, and if undecodable
    };
    using Entries = std::list<std::shared_ptr<Entry>>;

    void start(const std::shared_ptr<Entry>& entry, const ImageRef& image);

    Entries recent_;  // most recently used first
    MainThread mainThread_;
    Listeners<> arrivals_;
    std::unique_ptr<SerialQueue> queue_;  // declared last, so that its running action ends first
};

}  // namespace quorvane

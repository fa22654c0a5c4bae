// The pictures of one surface, in memory shared with the compositor.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "drawing/pictures/Pixels.hpp"
#include "platform/linux/card/SharedMemory.hpp"
#include "platform/linux/drawing/CairoHandles.hpp"
#include "platform/linux/wayland/WaylandSession.hpp"

namespace quorvane {

// Main thread only. The compositor reads one picture while the next is drawn into another.
class SharedPictures {
public:
    // Transparent pictures; null when memory is short.
    static std::unique_ptr<SharedPictures> make(int width, int height);

    int memory() const { return memory_->file().get(); }
    PixelRect bounds() const { return {0, 0, width_, height_}; }
    // Returns a picture that the compositor is not reading; nullopt if it is reading all of them.
    // The picture holds the pixels shown last, except in the parts that the caller redraws.
    std::optional<std::uint32_t> next(std::span<const PixelRect> redrawn = {});
    cairo_surface_t* surface(std::uint32_t picture) const {
        return pictures_[picture].surface.get();
    }
    // Marks it as being read; it differs from the last one in these parts.
    void shown(std::uint32_t picture, std::span<const PixelRect> parts);
    void released(std::uint32_t picture);

private:
    struct Picture {
        CairoSurface surface;
        bool isRead = false;
        std::vector<PixelRect> stale;  // parts that changed since it was shown
    };

    SharedPictures(std::unique_ptr<SharedMemory> memory, int width, int height);
    std::size_t pixelCount() const;

    std::unique_ptr<SharedMemory> memory_;  // outlives the pictures
    std::uint32_t* pixels_;
    int width_;
    int height_;
    std::array<Picture, kPictures> pictures_;
    std::uint32_t last_ = 0;
};

}  // namespace quorvane

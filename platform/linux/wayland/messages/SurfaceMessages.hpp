// The messages between the add-on and the process that owns the card's Wayland surfaces. Both are
// of one build, so a message is a plain struct in one packet.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <span>

#include "drawing/pictures/Pixels.hpp"

namespace quorvane {

// The process's program, beside the add-on's.
inline constexpr char kSurfaceProgram[] = "quorvane-card-surface";
// The descriptor at which it finds its end of the socket.
inline constexpr int kSurfaceSocket = 3;
// While a surface exists, the add-on sends a message at least this often. Without one for as long
// as the limit, the process ends, and its surfaces with it.
inline constexpr std::chrono::milliseconds kBeat{500};
inline constexpr std::chrono::milliseconds kBeatLimit{1800};
// Each surface has this many pictures in its memory, one after the other.
inline constexpr std::uint32_t kPictures = 2;

// A list with a fixed capacity, so that it can be part of a message.
struct PixelRects {
    static constexpr std::size_t kMost = 96;

    std::uint32_t count = 0;
    std::array<PixelRect, kMost> rects{};

    // The last one contains those for which there is no room.
    static PixelRects of(std::span<const PixelRect> list) {
        PixelRects result;
        for (const PixelRect& rect : list) {
            if (result.count < kMost)
                result.rects[result.count++] = rect;
            else
                result.rects.back() = result.rects.back().united(rect);
        }
        return result;
    }
    std::span<const PixelRect> list() const {
        return std::span{rects}.first(std::min<std::size_t>(count, kMost));
    }
};

struct ToSurface {
    enum class Kind : std::uint32_t {
        beat,
        open,   // comes with the memory's descriptor
        input,  // `parts` takes the pointer, in logical pixels of the surface
        show,   // shows `picture`; `parts` of it differ from the last one, in its pixels
        close,
    };
    Kind kind = Kind::beat;
    std::uint32_t surface = 0;
    std::uint32_t output = 0;
    PixelRect place{};       // on the output, logical pixels from its top left
    std::int32_t width = 0;  // of a picture
    std::int32_t height = 0;
    std::uint32_t picture = 0;
    PixelRects parts{};
};

struct FromSurface {
    enum class Kind : std::uint32_t {
        output,  // a new one, or one that has changed
        outputGone,
        ready,     // follows the messages for all outputs of the start
        frame,     // it is time to draw the next picture
        released,  // `picture` is no longer read
        pressed,
        moved,  // only while pressed
        lifted,
        cancelled,  // the press has ended without a release
        closed,     // by the compositor
        failed,     // `text` says why; the process ends
    };
    Kind kind = Kind::failed;
    std::uint32_t surface = 0;
    std::uint32_t output = 0;
    PixelRect place{};  // of the output, logical pixels
    double scale = 1;   // pixels per logical pixel
    std::uint32_t picture = 0;
    std::uint32_t button = 0;    // 1 is the primary one
    Point location{};            // logical pixels of the surface
    bool hasKdeOverlay = false;  // in `ready`
    std::array<char, 96> text{};
};

}  // namespace quorvane

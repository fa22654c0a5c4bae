// Owning handles of the drawing libraries' objects.
#pragma once

#include <cairo.h>
#include <glib-object.h>

#include <memory>

#include "drawing/pictures/Pixels.hpp"

#include "platform/ReleaseWith.hpp"

namespace quorvane {

using CairoContext = std::unique_ptr<cairo_t, ReleaseWith<cairo_destroy>>;
using CairoSurface = std::unique_ptr<cairo_surface_t, ReleaseWith<cairo_surface_destroy>>;
template <typename T>
using GObjectOwner = std::unique_ptr<T, ReleaseWith<g_object_unref>>;

// A surface over these pixels, which must exist as long as the surface or a source made of it.
inline CairoSurface surfaceOver(const Pixels& pixels) {
    return CairoSurface{cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(const_cast<std::uint32_t*>(pixels.values.data())),
        CAIRO_FORMAT_ARGB32, pixels.width, pixels.height, pixels.width * kBytesPerPixel)};
}

// Saves the context's state and restores it at the end of the scope.
class CairoState {
public:
    explicit CairoState(cairo_t* cairo) : cairo_(cairo) { cairo_save(cairo_); }
    ~CairoState() { cairo_restore(cairo_); }
    CairoState(const CairoState&) = delete;
    CairoState& operator=(const CairoState&) = delete;

private:
    cairo_t* cairo_;
};

}  // namespace quorvane

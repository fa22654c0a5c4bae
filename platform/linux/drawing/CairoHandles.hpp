// Owning handles of the drawing libraries' objects, and shared helpers for contexts.
#pragma once

#include <cairo.h>
#include <glib-object.h>

#include <memory>
#include <optional>

#include "platform/ReleaseWith.hpp"

namespace quorvane {

using CairoContext = std::unique_ptr<cairo_t, ReleaseWith<cairo_destroy>>;
using CairoSurface = std::unique_ptr<cairo_surface_t, ReleaseWith<cairo_surface_destroy>>;
using CairoRegion = std::unique_ptr<cairo_region_t, ReleaseWith<cairo_region_destroy>>;
using CairoPattern = std::unique_ptr<cairo_pattern_t, ReleaseWith<cairo_pattern_destroy>>;
template <typename T>
using GObjectOwner = std::unique_ptr<T, ReleaseWith<g_object_unref>>;

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

// Device pixels per unit of user space; nullopt when the context is rotated or not uniformly
// scaled.
inline std::optional<double> uprightScale(cairo_t* cairo) {
    cairo_matrix_t matrix{};
    cairo_get_matrix(cairo, &matrix);
    if (matrix.xy != 0 || matrix.yx != 0 || matrix.xx != matrix.yy) return std::nullopt;
    return matrix.xx;
}

}  // namespace quorvane

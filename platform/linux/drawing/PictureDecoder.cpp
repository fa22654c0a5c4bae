#include "platform/linux/drawing/PictureDecoder.hpp"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <cmath>

#include "drawing/pictures/EncodedImage.hpp"
#include "drawing/pictures/PictureLimits.hpp"

namespace quorvane {
namespace {

struct Sizing {
    PixelSize shown;
    bool isRefused = false;
};

// Called as soon as the header has been read. A smaller size saves the decoder most of the work if
// the format allows it; a size of 0 stops it.
void sizePrepared(GdkPixbufLoader* loader, int width, int height, gpointer data) {
    auto& sizing = *static_cast<Sizing*>(data);
    const PictureSize original{static_cast<std::uint32_t>(std::max(width, 0)),
                               static_cast<std::uint32_t>(std::max(height, 0))};
    if (!isDecodable(original)) {
        sizing.isRefused = true;
        gdk_pixbuf_loader_set_size(loader, 0, 0);
        return;
    }
    const double scale = std::max(static_cast<double>(sizing.shown.width) / width,
                                  static_cast<double>(sizing.shown.height) / height);
    if (scale >= 1) return;
    const auto scaled = [scale](int length) {
        return std::max(1, static_cast<int>(std::ceil(length * scale)));
    };
    gdk_pixbuf_loader_set_size(loader, scaled(width), scaled(height));
}

// Feeds the loader in pieces, so that a refused picture is not read to its end.
bool feed(GdkPixbufLoader* loader, ByteView encoded, const Sizing& sizing) {
    constexpr std::size_t kPiece = 16 * 1024;
    while (!encoded.empty()) {
        const ByteView piece = encoded.first(std::min(kPiece, encoded.size()));
        const auto* const bytes = reinterpret_cast<const guchar*>(piece.data());
        if (!gdk_pixbuf_loader_write(loader, bytes, piece.size(), nullptr)) return false;
        if (sizing.isRefused) return false;
        encoded = encoded.subspan(piece.size());
    }
    return true;
}

GObjectOwner<GdkPixbuf> load(ByteView encoded, PixelSize size) {
    // A loader that detects the type itself reads the system's list of file types, and may use a
    // decoder that is little tested.
    const char* const type = pictureType(encoded);
    if (!type) return nullptr;
    const GObjectOwner<GdkPixbufLoader> loader{gdk_pixbuf_loader_new_with_mime_type(type, nullptr)};
    if (!loader) return nullptr;  // no decoder is installed
    Sizing sizing{size};
    g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(sizePrepared), &sizing);
    const bool isFed = feed(loader.get(), encoded, sizing);
    // A loader must be closed even after a failure. The missing part of a truncated picture is
    // grey.
    if (!gdk_pixbuf_loader_close(loader.get(), nullptr) || !isFed) return nullptr;
    GdkPixbuf* const pixbuf = gdk_pixbuf_loader_get_pixbuf(loader.get());
    if (!pixbuf) return nullptr;
    return GObjectOwner<GdkPixbuf>{gdk_pixbuf_apply_embedded_orientation(pixbuf)};
}

std::uint32_t premultiplied(const guchar* pixel, bool hasAlpha) {
    const std::uint32_t alpha = hasAlpha ? pixel[3] : 255;
    const auto times = [alpha](std::uint32_t value) { return (value * alpha + 127) / 255; };
    return alpha << 24 | times(pixel[0]) << 16 | times(pixel[1]) << 8 | times(pixel[2]);
}

Pixels pixelsOf(const GdkPixbuf* pixbuf) {
    Pixels pixels{gdk_pixbuf_get_width(pixbuf), gdk_pixbuf_get_height(pixbuf)};
    const int channels = gdk_pixbuf_get_n_channels(pixbuf);
    const bool hasAlpha = gdk_pixbuf_get_has_alpha(pixbuf);
    const guchar* row = gdk_pixbuf_read_pixels(pixbuf);
    for (int y = 0; y < pixels.height; ++y, row += gdk_pixbuf_get_rowstride(pixbuf))
        for (int x = 0; x < pixels.width; ++x)
            pixels.row(y)[x] = premultiplied(row + std::ptrdiff_t{x} * channels, hasAlpha);
    return pixels;
}

}  // namespace

CairoSurface decodePicture(ByteView encoded, PixelSize size) {
    const GObjectOwner<GdkPixbuf> pixbuf = load(encoded, size);
    if (!pixbuf) return nullptr;
    const Pixels pixels = pixelsOf(pixbuf.get());
    const CairoSurface whole = surfaceOver(pixels);

    CairoSurface shown{cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size.width, size.height)};
    const CairoContext cairo{cairo_create(shown.get())};
    const double scale = std::max(static_cast<double>(size.width) / pixels.width,
                                  static_cast<double>(size.height) / pixels.height);
    cairo_translate(cairo.get(), size.width / 2.0, size.height / 2.0);
    cairo_scale(cairo.get(), scale, scale);
    cairo_set_source_surface(cairo.get(), whole.get(), -pixels.width / 2.0, -pixels.height / 2.0);
    cairo_pattern_set_filter(cairo_get_source(cairo.get()), CAIRO_FILTER_GOOD);
    cairo_pattern_set_extend(cairo_get_source(cairo.get()), CAIRO_EXTEND_PAD);
    cairo_paint(cairo.get());
    if (cairo_status(cairo.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
    return shown;
}

}  // namespace quorvane

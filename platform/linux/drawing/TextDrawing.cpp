#include "platform/linux/drawing/TextDrawing.hpp"

#include <hb-ot.h>
#include <pango/pangocairo.h>

#include <cmath>
#include <vector>

#include "drawing/TextPlacement.hpp"
#include "platform/linux/drawing/TextLayoutCache.hpp"

namespace quorvane {
namespace {

constexpr int kPlacesPerPixel = 4;  // positions per pixel for a letter
constexpr int kWidest = 32'000;     // pixels; Cairo's surfaces end shortly after
constexpr int kPieceWidth = 2048;
constexpr double kHighest = 2;  // in heights of a line, above and below the baseline

bool isColored(cairo_surface_t* letters) {
    return cairo_image_surface_get_format(letters) == CAIRO_FORMAT_ARGB32;
}

int bytesPerPixelOf(cairo_surface_t* letters) { return isColored(letters) ? kBytesPerPixel : 1; }

PangoLayoutLine* laidOut(const TextLine& line) {
    return pango_layout_get_line_readonly(line.layout.get(), 0);
}

bool hasColors(const TextLine& line) {
    for (const GSList* rest = laidOut(line)->runs; rest; rest = rest->next) {
        PangoFont* const font = static_cast<PangoGlyphItem*>(rest->data)->item->analysis.font;
        if (!font) continue;
        hb_face_t* const face = hb_font_get_face(pango_font_get_hb_font(font));
        if (hb_ot_color_has_png(face) || hb_ot_color_has_layers(face) || hb_ot_color_has_svg(face))
            return true;
    }
    return false;
}

// The area of the letters. The limits bound the memory for marks that pile up and for letters far
// wider than usual.
PixelRect inkOf(const TextLine& line, double scale) {
    PangoRectangle ink{};
    pango_layout_line_get_extents(laidOut(line), &ink, nullptr);
    if (ink.width <= 0 || ink.height <= 0) return {};
    const double pixels = scale / PANGO_SCALE;
    // One pixel more on every side, because letter positions and Pango's extents are rounded.
    const PixelRect all = pixelsTouchedBy(
        Rect{ink.x * pixels, ink.y * pixels, ink.width * pixels, ink.height * pixels}.grownBy(1));
    const int reach =
        static_cast<int>(kHighest * (line.heights.ascent + line.heights.descent) * scale);
    return all.intersection({all.x, -reach, kWidest, 2 * reach});
}

// The mean of each kPlacesPerPixel pixels.
void narrow(const unsigned char* wide, unsigned char* pixels, int width, int bytesPerPixel) {
    for (int x = 0; x < width;
         ++x, wide += kPlacesPerPixel * bytesPerPixel, pixels += bytesPerPixel)
        for (int byte = 0; byte < bytesPerPixel; ++byte) {
            int sum = kPlacesPerPixel / 2;
            for (int place = 0; place < kPlacesPerPixel; ++place)
                sum += wide[place * bytesPerPixel + byte];
            pixels[byte] = static_cast<unsigned char>(sum / kPlacesPerPixel);
        }
}

// Cairo's cached letter pictures are many times faster than filling outlines, but Cairo places them
// on whole pixels only. So letters are drawn several times as wide, and in pieces, because a
// surface's width is limited.
CairoSurface drawn(const TextLine& line, double scale, const Color& color, const PixelRect& ink) {
    const cairo_format_t format = hasColors(line) ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_A8;
    CairoSurface letters{cairo_image_surface_create(format, ink.width, ink.height)};
    const int bytesPerPixel = bytesPerPixelOf(letters.get());
    unsigned char* const pixels = cairo_image_surface_get_data(letters.get());
    if (!pixels) return nullptr;
    for (int left = 0; left < ink.width; left += kPieceWidth) {
        const int width = std::min(kPieceWidth, ink.width - left);
        const CairoSurface wide{
            cairo_image_surface_create(format, width * kPlacesPerPixel, ink.height)};
        const CairoContext cairo{cairo_create(wide.get())};
        cairo_translate(cairo.get(), -(ink.x + left) * kPlacesPerPixel, -ink.y);
        cairo_scale(cairo.get(), scale * kPlacesPerPixel, scale);
        cairo_set_source_rgb(cairo.get(), color.red, color.green, color.blue);
        pango_cairo_show_layout_line(cairo.get(), laidOut(line));
        cairo_surface_flush(wide.get());
        const unsigned char* const data = cairo_image_surface_get_data(wide.get());
        if (!data) return nullptr;
        for (int y = 0; y < ink.height; ++y)
            narrow(data + std::ptrdiff_t{y} * cairo_image_surface_get_stride(wide.get()),
                   pixels + std::ptrdiff_t{y} * cairo_image_surface_get_stride(letters.get()) +
                       left * bytesPerPixel,
                   width, bytesPerPixel);
    }
    cairo_surface_mark_dirty(letters.get());
    return letters;
}

// The line keeps the last result.
const LinePixels& pixelsOf(const TextLine& line, double scale, const Color& color) {
    LinePixels& last = line.pixels;
    const Color opaque{color.red, color.green, color.blue};
    const bool hasOtherColor =
        last.surface && isColored(last.surface.get()) && last.color != opaque;
    if (last.scale == scale && !hasOtherColor) return last;
    const PixelRect ink = inkOf(line, scale);
    last = {scale, opaque, ink, ink.isEmpty() ? nullptr : drawn(line, scale, opaque, ink)};
    return last;
}

const TextLine& lineOf(const TextNode& node, TextLayoutCache& texts) {
    const TextLine& whole = texts.line(node.text, node.font);
    if (node.scroll || !isTooWide(node, whole.width)) return whole;
    return texts.line(node.text, node.font, node.frame.width);
}

// The pixels of `area` with copies of the letters, whose ink begins at row `top` and these columns.
// Copies do not overlap, because the gap between them is wider than letters overhang.
CairoSurface copiesIn(const PixelRect& area, const LinePixels& letters, int top,
                      const std::vector<int>& columns) {
    CairoSurface field{cairo_image_surface_create(
        cairo_image_surface_get_format(letters.surface.get()), area.width, area.height)};
    const auto rowOf = [](const CairoSurface& surface, int y) {
        return cairo_image_surface_get_data(surface.get()) +
               std::ptrdiff_t{y} * cairo_image_surface_get_stride(surface.get());
    };
    const int bytesPerPixel = bytesPerPixelOf(field.get());
    for (const int column : columns) {
        const PixelRect shown =
            area.intersection({column, top, letters.ink.width, letters.ink.height});
        for (int y = shown.y; y < shown.maxY(); ++y)
            std::copy_n(rowOf(letters.surface, y - top) + (shown.x - column) * bytesPerPixel,
                        shown.width * bytesPerPixel,
                        rowOf(field, y - area.y) + (shown.x - area.x) * bytesPerPixel);
    }
    cairo_surface_mark_dirty(field.get());
    return field;
}

// Fades both ends of a scrolling line.
void fade(cairo_surface_t* field, const TextNode& node, double scale) {
    cairo_surface_flush(field);
    const int bytesPerPixel = bytesPerPixelOf(field);
    const std::ptrdiff_t stride = cairo_image_surface_get_stride(field);
    const int width = cairo_image_surface_get_width(field);
    const int height = cairo_image_surface_get_height(field);
    for (int x = 0; x < width / 2; ++x) {
        const double strength = fadeStrength(node, (x + 0.5) / scale);
        if (strength >= 1) break;
        const auto share = static_cast<unsigned>(std::lround(strength * 256));
        for (const int column : {x, width - 1 - x}) {
            unsigned char* byte = cairo_image_surface_get_data(field) + column * bytesPerPixel;
            for (int y = 0; y < height; ++y, byte += stride)
                for (int i = 0; i < bytesPerPixel; ++i)
                    byte[i] = static_cast<unsigned char>(byte[i] * share >> 8);
        }
    }
    cairo_surface_mark_dirty(field);
}

void paint(cairo_t* cairo, cairo_surface_t* field, const PixelRect& area, const Color& color) {
    const CairoState state{cairo};
    cairo_identity_matrix(cairo);
    if (isColored(field)) {
        cairo_set_source_surface(cairo, field, area.x, area.y);
        cairo_paint_with_alpha(cairo, color.alpha);
    } else {
        cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha);
        cairo_mask_surface(cairo, field, area.x, area.y);
    }
}

}  // namespace

Rect inkOf(const TextNode& node, double scale, TextLayoutCache& texts) {
    const TextLine& line = lineOf(node, texts);
    const PixelRect& ink = pixelsOf(line, scale, node.color).ink;
    // One pixel more above and below, because the line lies on whole pixels.
    const double top = baselineOf(node.frame, line.heights) + (ink.y - 1) / scale;
    const double begin = std::max(node.frame.y, top);
    const double end = std::min(node.frame.maxY(), top + (ink.height + 2) / scale);
    return {node.frame.x, begin, node.frame.width, std::max(0.0, end - begin)};
}

// Lines lie on whole pixels, so that letters are equally sharp everywhere and their spacing does
// not jitter while a line moves.
void drawText(cairo_t* cairo, const TextNode& node, bool isRightToLeft, TextLayoutCache& texts) {
    cairo_matrix_t place{};
    cairo_get_matrix(cairo, &place);
    const double scale = place.xx;
    const auto column = [&](double x) {
        return static_cast<int>(std::lround(x * scale + place.x0));
    };
    const auto row = [&](double y) { return static_cast<int>(std::lround(y * scale + place.y0)); };

    const TextLine& line = lineOf(node, texts);
    const LinePixels& letters = pixelsOf(line, scale, node.color);
    const Rect& frame = node.frame;
    const PixelRect ink = letters.ink.movedBy(0, row(baselineOf(frame, line.heights)));
    const int left = column(frame.x);
    const int top = std::max(row(frame.y), ink.y);
    const PixelRect area{left, top, column(frame.maxX()) - left,
                         std::min(row(frame.maxY()), ink.maxY()) - top};
    if (!letters.surface || area.isEmpty()) return;

    // The resting place is rounded separately, so that frames timed for whole pixels of scrolling
    // move by whole pixels.
    const double rest = (column(leftEdgeOf(node, line.width, isRightToLeft)) - place.x0) / scale;
    std::vector<int> columns;
    for (const double edge :
         node.scroll ? copiesOf(node, rest, line.width, isRightToLeft) : std::vector{rest})
        columns.push_back(column(edge) + ink.x);
    const CairoSurface field = copiesIn(area, letters, ink.y, columns);
    if (node.scroll) fade(field.get(), node, scale);
    paint(cairo, field.get(), area, node.color);
}

}  // namespace quorvane

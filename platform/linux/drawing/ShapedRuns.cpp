#include "platform/linux/drawing/ShapedRuns.hpp"

#include <hb-ot.h>
#include <pango/pangocairo.h>

namespace quorvane {
namespace {

bool hasColors(PangoFont* font) {
    if (!font) return false;
    hb_face_t* const face = hb_font_get_face(pango_font_get_hb_font(font));
    return hb_ot_color_has_png(face) || hb_ot_color_has_layers(face) || hb_ot_color_has_svg(face);
}

const GSList* runsOf(const TextLine& line) {
    return pango_layout_get_line_readonly(line.layout.get(), 0)->runs;
}

}  // namespace

bool hasColors(const TextLine& line) {
    for (const GSList* rest = runsOf(line); rest; rest = rest->next)
        if (hasColors(static_cast<const PangoGlyphItem*>(rest->data)->item->analysis.font))
            return true;
    return false;
}

void fillLine(cairo_t* cairo, const TextLine& line, Point start) {
    double x = start.x;
    for (const GSList* rest = runsOf(line); rest; rest = rest->next) {
        const auto& run = *static_cast<const PangoGlyphItem*>(rest->data);
        PangoFont* const font = run.item->analysis.font;
        const double rise = pango_units_to_double(run.y_offset);
        cairo_move_to(cairo, x + pango_units_to_double(run.start_x_offset), start.y - rise);
        // Cairo snaps letters that it draws itself to whole pixels, which makes their spacing
        // uneven. Filled outlines keep their exact positions. Emoji have no outlines.
        if (hasColors(font)) {
            pango_cairo_show_glyph_string(cairo, font, run.glyphs);
        } else if (font) {
            pango_cairo_glyph_string_path(cairo, font, run.glyphs);
            cairo_fill(cairo);
        }
        cairo_new_path(cairo);
        x += pango_units_to_double(pango_glyph_string_get_width(run.glyphs) + run.start_x_offset +
                                   run.end_x_offset);
    }
}

}  // namespace quorvane

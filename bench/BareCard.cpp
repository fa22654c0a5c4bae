// Opens the card's libraries, draws two lines of text, decodes a picture, prints a line and waits:
// the least memory that a card can use.

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <pango/pangocairo.h>
#include <unistd.h>

namespace {

void writeLine(cairo_t* cairo, const char* font) {
    PangoLayout* const layout = pango_cairo_create_layout(cairo);
    PangoFontDescription* const description = pango_font_description_from_string(font);
    pango_layout_set_font_description(layout, description);
    pango_layout_set_text(layout, "Tideline", -1);
    pango_cairo_show_layout(cairo, layout);
    pango_font_description_free(description);
    g_object_unref(layout);
}

void writeLines() {
    cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 200, 40);
    cairo_t* const cairo = cairo_create(surface);
    writeLine(cairo, "Inter,sans 13");
    writeLine(cairo, "Inter,sans Semi-Bold 17");
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
}

bool decode(const char* file) {
    gchar* bytes = nullptr;
    gsize size = 0;
    if (!g_file_get_contents(file, &bytes, &size, nullptr)) return false;
    GdkPixbufLoader* const loader = gdk_pixbuf_loader_new_with_mime_type("image/jpeg", nullptr);
    const bool isDecoded =
        gdk_pixbuf_loader_write(loader, reinterpret_cast<const guchar*>(bytes), size, nullptr);
    gdk_pixbuf_loader_close(loader, nullptr);
    g_object_unref(loader);
    g_free(bytes);
    return isDecoded;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2 || !decode(arguments[1])) return 1;
    writeLines();
    constexpr char kReady[] = "ready\n";
    if (write(STDERR_FILENO, kReady, sizeof kReady - 1) < 0) return 1;
    pause();
    return 0;
}

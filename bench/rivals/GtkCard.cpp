// The card as GTK 4 widgets: GtkCard TITLE ARTWORK. Parts that move, that change once a second
// and that never change are separate widgets, so that GTK keeps the drawings of the others.

#include <gtk/gtk.h>

#include <functional>

#include "bench/rivals/CardFace.hpp"

namespace quorvane::rivals {
namespace {

using Draw = std::function<void(GtkSnapshot*)>;

// A widget that draws with a function, which its creator keeps alive.
struct Part {
    GtkWidget parent;
    const Draw* draw;
};
struct PartClass {
    GtkWidgetClass parent;
};

G_DEFINE_TYPE(Part, part, GTK_TYPE_WIDGET)

void part_init(Part*) {}
void part_class_init(PartClass* partClass) {
    GTK_WIDGET_CLASS(partClass)->snapshot = [](GtkWidget* widget, GtkSnapshot* snapshot) {
        (*reinterpret_cast<Part*>(widget)->draw)(snapshot);
    };
}

graphene_rect_t rectOf(const Rect& rect) {
    return GRAPHENE_RECT_INIT(static_cast<float>(rect.x), static_cast<float>(rect.y),
                              static_cast<float>(rect.width), static_cast<float>(rect.height));
}

GdkRGBA colorOf(const Color& color) {
    return {static_cast<float>(color.red), static_cast<float>(color.green),
            static_cast<float>(color.blue), static_cast<float>(color.alpha)};
}

void fill(GtkSnapshot* snapshot, const Rect& rect, const Color& color) {
    const graphene_rect_t bounds = rectOf(rect);
    const GdkRGBA rgba = colorOf(color);
    gtk_snapshot_append_color(snapshot, &rgba, &bounds);
}

void clipRounded(GtkSnapshot* snapshot, const Rect& rect, double radius) {
    const graphene_rect_t bounds = rectOf(rect);
    GskRoundedRect rounded;
    gsk_rounded_rect_init_from_rect(&rounded, &bounds, static_cast<float>(radius));
    gtk_snapshot_push_rounded_clip(snapshot, &rounded);
}

void drawBars(GtkSnapshot* snapshot, const std::vector<Bar>& bars) {
    for (const Bar& bar : bars) {
        clipRounded(snapshot, bar.frame, std::min(bar.frame.width, bar.frame.height) / 2);
        fill(snapshot, bar.frame, Color::white(bar.opacity));
        gtk_snapshot_pop(snapshot);
    }
}

void drawLayout(GtkSnapshot* snapshot, PangoLayout* layout, double x, double y,
                const Color& color) {
    gtk_snapshot_save(snapshot);
    const graphene_point_t place{static_cast<float>(x), static_cast<float>(y)};
    gtk_snapshot_translate(snapshot, &place);
    const GdkRGBA rgba = colorOf(color);
    gtk_snapshot_append_layout(snapshot, layout, &rgba);
    gtk_snapshot_restore(snapshot);
}

void drawOutlines(cairo_t* cairo, const std::vector<Outline>& outlines) {
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    for (const Outline& outline : outlines) {
        for (const Point& point : outline.points) cairo_line_to(cairo, point.x, point.y);
        cairo_set_source_rgba(cairo, 1, 1, 1, outline.opacity);
        cairo_set_line_width(cairo, outline.pen);
        outline.pen > 0 ? cairo_stroke(cairo) : cairo_fill(cairo);
    }
}

class GtkCard {
public:
    GtkCard(const char* title, const char* artwork)
        : artwork_(gdk_texture_new_from_filename(artwork, nullptr)), marquee_{.text = title} {
        addPart(face_, kCard);
        title_ = makeLayout(title, PlayerLayout::kTrackTextSize, PANGO_WEIGHT_SEMIBOLD);
        int width = 0;
        pango_layout_get_size(title_, &width, nullptr);
        marquee_.textWidth = static_cast<double>(width) / PANGO_SCALE;
        marquee_.fieldWidth = geometry_.title.width;
        marquee_.start = start_;
        titlePart_ = addPart(drawTitle_, titleNow().frame);
        clockPart_ = addPart(drawClock_, clockArea(geometry_));
        GtkWindow* const window = GTK_WINDOW(gtk_window_new());
        gtk_window_set_decorated(window, FALSE);
        gtk_window_set_child(window, GTK_WIDGET(parts_));
        g_timeout_add(1000, perform<&GtkCard::changeClock>, this);
        rest();
        gtk_window_present(window);
    }

private:
    static constexpr auto kLongRest = std::chrono::milliseconds{100};

    template <void (GtkCard::*action)()>
    static gboolean perform(void* card) {
        (static_cast<GtkCard*>(card)->*action)();
        return G_SOURCE_CONTINUE;
    }

    GtkWidget* addPart(const Draw& draw, const Rect& place) {
        auto* const part = static_cast<Part*>(g_object_new(part_get_type(), nullptr));
        part->draw = &draw;
        gtk_widget_set_size_request(&part->parent, static_cast<int>(place.width),
                                    static_cast<int>(place.height));
        gtk_widget_set_overflow(&part->parent, GTK_OVERFLOW_HIDDEN);
        gtk_fixed_put(parts_, &part->parent, place.x, place.y);
        return &part->parent;
    }

    PangoLayout* makeLayout(const char* text, double size, PangoWeight weight) {
        PangoLayout* const layout = gtk_widget_create_pango_layout(GTK_WIDGET(parts_), text);
        PangoFontDescription* const font = pango_font_description_new();
        pango_font_description_set_family(font, kFontFamily);
        pango_font_description_set_weight(font, weight);
        pango_font_description_set_absolute_size(font, size * PANGO_SCALE);
        pango_layout_set_font_description(layout, font);
        pango_font_description_free(font);
        return layout;
    }

    TextNode titleNow() const { return marquee_.node(geometry_.title, now()); }
    void changeClock() { gtk_widget_queue_draw(clockPart_); }

    // GTK's frame clock runs only while the title moves.
    void rest() {
        const Duration wait = *marquee_.nextChange(now(), 2);  // it scrolls
        const auto time = std::chrono::ceil<std::chrono::milliseconds>(wait).count();
        g_timeout_add_once(
            static_cast<guint>(time),
            [](void* data) {
                auto* const card = static_cast<GtkCard*>(data);
                gtk_widget_add_tick_callback(
                    card->titlePart_,
                    [](GtkWidget*, GdkFrameClock*, void* self) {
                        return static_cast<GtkCard*>(self)->moveTitle();
                    },
                    data, nullptr);
            },
            this);
    }
    gboolean moveTitle() {
        gtk_widget_queue_draw(titlePart_);
        if (*marquee_.nextChange(now(), 2) < kLongRest) return G_SOURCE_CONTINUE;
        rest();
        return G_SOURCE_REMOVE;
    }

    void drawFace(GtkSnapshot* snapshot) {
        fill(snapshot, kCard, kBackdrop);
        clipRounded(snapshot, kCard, PlayerLayout::kCardCornerRadius);
        fill(snapshot, kCard, kPanel);
        gtk_snapshot_pop(snapshot);
        clipRounded(snapshot, geometry_.artwork, PlayerLayout::kArtworkCornerRadius);
        const graphene_rect_t place = rectOf(geometry_.artwork);
        gtk_snapshot_append_texture(snapshot, artwork_, &place);
        gtk_snapshot_pop(snapshot);
        drawText(snapshot, geometry_.artist, 0, PlayerLayout::kTrackTextSize, kArtist);
        drawBars(snapshot, volumeBars(geometry_));
        const graphene_rect_t bounds = rectOf(kCard);
        cairo_t* const cairo = gtk_snapshot_append_cairo(snapshot, &bounds);
        drawOutlines(cairo, symbols(geometry_));
        cairo_destroy(cairo);
    }

    // `alignment` is 0 at the left, 1 at the right.
    void drawText(GtkSnapshot* snapshot, const Rect& frame, double alignment, double size,
                  const std::string& text) {
        PangoLayout* const layout = makeLayout(text.c_str(), size, PANGO_WEIGHT_NORMAL);
        int width = 0;
        int height = 0;
        pango_layout_get_size(layout, &width, &height);
        drawLayout(snapshot, layout,
                   frame.x + alignment * (frame.width - width / double{PANGO_SCALE}),
                   frame.midY() - height / 2.0 / PANGO_SCALE,
                   Color::white(PlayerLayout::kSecondaryOpacity));
        g_object_unref(layout);
    }

    void drawTitle(GtkSnapshot* snapshot) const {
        const TextNode title = titleNow();
        const double first = -std::floor(title.scroll->offset * 2) / 2;
        int height = 0;
        pango_layout_get_size(title_, nullptr, &height);
        const double top = (title.frame.height - height / double{PANGO_SCALE}) / 2;
        drawLayout(snapshot, title_, first, top, Color::white());
        drawLayout(snapshot, title_, first + marquee_.textWidth + title.scroll->gap, top,
                   Color::white());
        fade(snapshot, {0, 0, title.scroll->fade, title.frame.height}, 1);
        fade(snapshot,
             {title.frame.width - title.scroll->fade, 0, title.scroll->fade, title.frame.height},
             0);
    }

    static void fade(GtkSnapshot* snapshot, const Rect& area, double opacityLeft) {
        const graphene_rect_t bounds = rectOf(area);
        Color color = kPanel;
        color.alpha = opacityLeft;
        GskColorStop stops[2] = {{0, colorOf(color)}, {1, colorOf(color)}};
        stops[1].color.alpha = static_cast<float>(1 - opacityLeft);
        const graphene_point_t right{static_cast<float>(area.maxX()), 0};
        gtk_snapshot_append_linear_gradient(snapshot, &bounds, &bounds.origin, &right, stops, 2);
    }

    void drawClock(GtkSnapshot* snapshot) {
        const double position = secondsSince(start_);
        const Rect area = clockArea(geometry_);
        const graphene_point_t origin{static_cast<float>(-area.x), static_cast<float>(-area.y)};
        gtk_snapshot_translate(snapshot, &origin);
        drawBars(snapshot, progressBars(geometry_, position));
        drawText(snapshot, geometry_.elapsed, 0, PlayerLayout::kTimeTextSize,
                 TimeFormatting::text(position));
        drawText(snapshot, geometry_.remaining, 1, PlayerLayout::kTimeTextSize,
                 TimeFormatting::remaining(kDuration, position));
    }

    const PlayerGeometry geometry_ = PlayerGeometry::make(true, false);
    const Instant start_ = now();
    GdkTexture* const artwork_;
    MarqueeText marquee_;
    GtkFixed* const parts_ = GTK_FIXED(gtk_fixed_new());
    const Draw face_ = [this](GtkSnapshot* snapshot) { drawFace(snapshot); };
    const Draw drawTitle_ = [this](GtkSnapshot* snapshot) { drawTitle(snapshot); };
    const Draw drawClock_ = [this](GtkSnapshot* snapshot) { drawClock(snapshot); };
    PangoLayout* title_ = nullptr;
    GtkWidget* titlePart_ = nullptr;
    GtkWidget* clockPart_ = nullptr;
};

}  // namespace
}  // namespace quorvane::rivals

int main(int count, char** arguments) {
    if (count != 3) return 2;
    gtk_init();
    quorvane::rivals::GtkCard card{arguments[1], arguments[2]};
    while (true) g_main_context_iteration(nullptr, TRUE);
}

#include "platform/linux/drawing/TextLayoutCache.hpp"

#include <pango/pangocairo.h>

#include <algorithm>

#include "drawing/SingleLine.hpp"
#include "platform/linux/language/UserLanguage.hpp"

namespace quorvane {
namespace {

constexpr double kDashSpacing = 0.1;  // of the font's size

PangoWeight weightOf(FontStyle::Weight weight) {
    switch (weight) {
        case FontStyle::Weight::regular: return PANGO_WEIGHT_NORMAL;
        case FontStyle::Weight::medium: return PANGO_WEIGHT_MEDIUM;
        case FontStyle::Weight::semibold: return PANGO_WEIGHT_SEMIBOLD;
        case FontStyle::Weight::bold: return PANGO_WEIGHT_BOLD;
    }
    return PANGO_WEIGHT_NORMAL;
}

double points(int pangoUnits) { return static_cast<double>(pangoUnits) / PANGO_SCALE; }

GObjectOwner<PangoContext> makeContext() {
    GObjectOwner<PangoContext> context{
        pango_font_map_create_context(pango_cairo_font_map_get_default())};
    // Grey antialiasing, because the text moves and lies over a picture. No hinting, so that widths
    // are the same at every scale.
    cairo_font_options_t* const options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    pango_cairo_context_set_font_options(context.get(), options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(context.get(), FALSE);
    // Chinese and Japanese share characters that look different in each.
    if (const auto locales = preferredLocales(); !locales.empty())
        pango_context_set_language(
            context.get(), pango_language_from_string(languageTag(locales.front()).c_str()));
    return context;
}

}  // namespace

TextLayoutCache::TextLayoutCache(std::string families)
    : families_(std::move(families)), context_(makeContext()) {}

const TextLine& TextLayoutCache::line(const std::string& text, const FontStyle& font,
                                      std::optional<double> fit) {
    return recent_.line(text, font, fit, [&] { return layOut(text, font, fit); });
}

TextLine TextLayoutCache::layOut(const std::string& text, const FontStyle& font,
                                 std::optional<double> fit) {
    PangoFontDescription* const description = pango_font_description_new();
    pango_font_description_set_family(description, families_.c_str());
    pango_font_description_set_weight(description, weightOf(font.weight));
    pango_font_description_set_absolute_size(description, font.size * PANGO_SCALE);

    TextLine line{.layout = GObjectOwner<PangoLayout>{pango_layout_new(context_.get())}};
    PangoLayout* const layout = line.layout.get();
    pango_layout_set_single_paragraph_mode(layout, TRUE);
    pango_layout_set_font_description(layout, description);
    const std::string shown = singleLine(text);
    if (font.hasTabularDigits) {
        PangoAttrList* const attributes = pango_attr_list_new();
        pango_attr_list_insert(attributes, pango_attr_font_features_new("tnum=1"));
        // Dashes replace the digits of an unknown time. Without extra spacing they would join into
        // one line.
        if (shown.find("\u2013") != std::string::npos)
            pango_attr_list_insert(attributes, pango_attr_letter_spacing_new(static_cast<int>(
                                                   kDashSpacing * font.size * PANGO_SCALE)));
        pango_layout_set_attributes(layout, attributes);
        pango_attr_list_unref(attributes);
    }
    pango_layout_set_text(layout, shown.data(), static_cast<int>(shown.size()));
    if (fit) {
        pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
        pango_layout_set_width(layout, static_cast<int>(std::max(*fit, 0.0) * PANGO_SCALE));
    }

    PangoRectangle extents{};
    pango_layout_line_get_extents(pango_layout_get_line_readonly(layout, 0), nullptr, &extents);
    line.width = points(extents.width);
    line.heights = heightsOf(font, description);
    pango_font_description_free(description);
    return line;
}

LineHeights TextLayoutCache::heightsOf(const FontStyle& font,
                                       const PangoFontDescription* description) {
    const auto known = std::ranges::find(heights_, font, &FontHeights::font);
    if (known != heights_.end()) return known->heights;
    PangoFontMetrics* const metrics =
        pango_context_get_metrics(context_.get(), description, nullptr);
    const LineHeights heights{points(pango_font_metrics_get_ascent(metrics)),
                              points(pango_font_metrics_get_descent(metrics))};
    pango_font_metrics_unref(metrics);
    heights_.push_back({font, heights});
    return heights;
}

MeasureText makeMeasureText(std::string families) {
    return [layouts = std::make_shared<TextLayoutCache>(std::move(families))](
               const std::string& text, const FontStyle& font) {
        return layouts->line(text, font).width;
    };
}

}  // namespace quorvane

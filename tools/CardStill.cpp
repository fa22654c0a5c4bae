#include "tools/CardStill.hpp"

#include <cmath>
#include <cstdlib>

#include "AddOnKit/card/PlayerView.hpp"
#include "Quorvane_Lock_Screen/GlassCardView.hpp"
#include "drawing/pictures/CardChrome.hpp"
#include "drawing/pictures/EncodedImage.hpp"
#include "platform/linux/language/Translations.hpp"
#include "platform/linux/language/UserLanguage.hpp"
#include "tools/Files.hpp"

namespace quorvane {
namespace {

const CardStyle kStyle = GlassCardView::style();

ImageRef decodeImage(ByteView encoded) {
    if (!decodePicture(encoded, {1, 1})) return nullptr;
    return std::make_shared<EncodedImage>(copyOf(encoded));
}

WallTime later(WallTime date, double seconds) {
    return date + std::chrono::duration_cast<Duration>(std::chrono::duration<double>(seconds));
}

std::expected<Pixels, std::string> makeBackdrop(const std::string& what, PixelSize size) {
    Pixels pixels{size.width, size.height};
    if (what.starts_with("#")) {
        char* end = nullptr;
        const unsigned long color = std::strtoul(what.c_str() + 1, &end, 16);
        if (what.size() != 7 || *end != '\0')
            return std::unexpected{"the backdrop \"" + what + "\" is not a colour like #20242c"};
        std::ranges::fill(pixels.values, kOpaqueBlack | static_cast<std::uint32_t>(color));
        return pixels;
    }
    const auto bytes = readFile(what);
    if (!bytes) return std::unexpected{bytes.error()};
    const CairoSurface picture = decodePicture(*bytes, size);
    if (!picture) return std::unexpected{what + ": is not a picture that can be decoded"};
    for (int y = 0; y < size.height; ++y)
        std::copy_n(reinterpret_cast<const std::uint32_t*>(
                        cairo_image_surface_get_data(picture.get()) +
                        std::ptrdiff_t{y} * cairo_image_surface_get_stride(picture.get())),
                    size.width, pixels.row(y));
    return pixels;
}

void paint(cairo_t* cairo, const Pixels& pixels) {
    const CairoState state{cairo};
    const CairoSurface surface = surfaceOver(pixels);
    cairo_set_source_surface(cairo, surface.get(), 0, 0);
    cairo_paint(cairo);
}

PixelSize pixelSize(Size size, double scale) {
    return {static_cast<int>(std::lround(size.width * scale)),
            static_cast<int>(std::lround(size.height * scale))};
}

}  // namespace

bool isRightToLeft(const CardRenderOptions& options) {
    if (options.isRightToLeft) return *options.isRightToLeft;
    const std::vector<std::string> locales = preferredLocales();
    return !locales.empty() && isRightToLeftLocale(locales.front());
}

std::expected<std::unique_ptr<CardStill>, std::string> CardStill::make(
    const QuorvanePlayerState& state, const CardRenderOptions& options) {
    std::unique_ptr<CardStill> still{new CardStill{state, options}};
    if (options.backdrop == "none") return still;
    const Size stage{kStyle.card.width + 2 * kStyle.shadowMargin,
                     kStyle.card.height + 2 * kStyle.shadowMargin};
    auto backdrop = makeBackdrop(options.backdrop, pixelSize(stage, options.scale));
    if (!backdrop) return std::unexpected{backdrop.error()};
    still->backdrop_ = *std::move(backdrop);
    still->chrome_ = makeCardChrome(still->backdrop_, kStyle, options.scale);
    return still;
}

CardStill::CardStill(const QuorvanePlayerState& state, const CardRenderOptions& options)
    : options_(options),
      date_(later(state.timestamp, options.at)),
      model_([date = date_] { return date; }, decodeImage),
      canvas_(options.scale, nullptr,
              options.fonts.empty() ? TextLayoutCache::kSystemFont : options.fonts) {
    model_.apply(state);
    environment_ = {.localized = [texts = Translations{preferredLocales()}](
                                     const std::string& key) { return texts.text(key); },
                    .measureText = makeMeasureText(
                        options.fonts.empty() ? TextLayoutCache::kSystemFont : options.fonts),
                    .isRightToLeft = isRightToLeft(options),
                    .reduceMotion = options.reducesMotion,
                    .scale = options.scale};
    if (options.pressed == SceneControl::ID::volume) {
        model_.beginVolumeDrag();
        interaction_.thickening = Transition{1};
    } else if (options.pressed) {
        *interaction_.press(*options.pressed) = Transition{1};
    }
}

CairoSurface CardStill::draw(double elapsed) {
    environment_.playerFrozenDate = later(date_, elapsed);
    environment_.marqueeFrozenTime = options_.marquee + elapsed;
    const Scene scene = PlayerView{model_, environment_}.scene(interaction_, {{}, date_}).scene;

    const bool hasChrome = !chrome_.isEmpty();
    const PixelSize size = hasChrome ? PixelSize{chrome_.width, chrome_.height}
                                     : pixelSize(kStyle.card, options_.scale);
    CairoSurface picture{cairo_image_surface_create(
        hasChrome ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32, size.width, size.height)};
    const CairoContext cairo{cairo_create(picture.get())};
    if (hasChrome) {
        paint(cairo.get(), backdrop_);
        paint(cairo.get(), chrome_);
    }
    cairo_scale(cairo.get(), options_.scale, options_.scale);
    if (hasChrome) cairo_translate(cairo.get(), kStyle.shadowMargin, kStyle.shadowMargin);
    canvas_.drawOn(cairo.get(), scene);
    cairo_surface_flush(picture.get());
    return picture;
}

}  // namespace quorvane

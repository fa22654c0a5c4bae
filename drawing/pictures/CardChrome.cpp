#include "drawing/pictures/CardChrome.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "drawing/pictures/Blur.hpp"
#include "drawing/pictures/CardShape.hpp"
#include "drawing/pictures/GlassMaterial.hpp"

namespace quorvane {
namespace {

constexpr double kShadowPointsAValue = 4;
constexpr double kEdgeWidth = 0.75;  // points, never less than a pixel
constexpr float kEdgeTop = 0.30F;
constexpr float kEdgeBottom = 0.12F;

double edgePixels(double scale) { return std::max(1.0, kEdgeWidth * scale); }

// The share of a pixel inside an outline this many pixels away from the pixel's centre.
float coverage(double distance) { return static_cast<float>(std::clamp(0.5 - distance, 0.0, 1.0)); }

// The shadow's opacity, one value for every few points.
struct Shadow {
    double pointsAValue;
    Plane opacity;

    explicit Shadow(const CardStyle& style) : pointsAValue(kShadowPointsAValue) {
        const CardShape shape{style.card, style.cornerRadius};
        const auto count = [&](double length) {
            return static_cast<int>(std::ceil((length + 2 * style.shadowMargin) / pointsAValue)) +
                   1;
        };
        opacity = Plane{count(style.card.width), count(style.card.height)};
        for (int y = 0; y < opacity.height; ++y)
            for (int x = 0; x < opacity.width; ++x) {
                const Point point{x * pointsAValue - style.shadowMargin,
                                  y * pointsAValue - style.shadowMargin - style.shadowOffset};
                opacity.at(x, y) = static_cast<float>(style.shadowOpacity) *
                                   coverage(shape.distance(point) / pointsAValue);
            }
        blur(opacity, style.shadowRadius / pointsAValue);
    }

    void readLine(double y, std::vector<float>& line) const {
        opacity.readLine(static_cast<float>(y / pointsAValue), line);
    }
    float at(const std::vector<float>& line, double x) const {
        return sampled(line, static_cast<float>(x / pointsAValue));
    }
};

std::uint32_t lightened(std::uint32_t pixel, float share) {
    const auto channel = [&](int shift) {
        const auto value = static_cast<float>(pixel >> shift & 0xff);
        return static_cast<std::uint32_t>(value + (255 - value) * share + 0.5F) << shift;
    };
    return kOpaqueBlack | channel(16) | channel(8) | channel(0);
}

// The glass of this opacity beside black of the shadow's, weighted by coverage.
std::uint32_t blended(std::uint32_t glass, float opacity, float covered, float shadow) {
    const float share = covered * opacity;
    const auto channel = [&](int shift) {
        return static_cast<std::uint32_t>(static_cast<float>(glass >> shift & 0xff) * share + 0.5F)
               << shift;
    };
    const float alpha = share + shadow * (1 - covered);
    return static_cast<std::uint32_t>(alpha * 255 + 0.5F) << 24 | channel(16) | channel(8) |
           channel(0);
}

// Draws the chrome row by row.
struct Painter {
    const CardStyle& style;
    double scale;
    PixelRect card;
    GlassPicture glass;
    Shadow shadow{style};
    CardShape shape{style.card, style.cornerRadius};
    double edge = edgePixels(scale);
    std::vector<std::uint32_t> glassRow{};
    std::vector<float> shadowLine{};

    // The columns of a row that contain only glass, without edge or corners.
    std::pair<int, int> insideOf(int y) const {
        const int corner = static_cast<int>(std::ceil(style.cornerRadius * scale * 1.5));
        const int rim = static_cast<int>(std::ceil(edge)) + 2;
        const bool isInside = y >= card.y + rim && y < card.maxY() - rim;
        const bool isPastCorners = y >= card.y + corner && y < card.maxY() - corner;
        if (!isInside) return {0, 0};
        const int inset = isPastCorners ? rim : corner;
        return {card.x + inset, card.maxX() - inset};
    }

    void drawRow(int y, std::uint32_t* pixels, int width) {
        const double top = (y + 0.5) / scale;
        const double depth = std::clamp((top - style.shadowMargin) / style.card.height, 0.0, 1.0);
        const float edgeLight = kEdgeTop + (kEdgeBottom - kEdgeTop) * static_cast<float>(depth);
        const bool meetsCard = y >= card.y && y < card.maxY();
        shadow.readLine(top, shadowLine);
        if (meetsCard) glass.readRow(y, card.x, card.maxX(), glassRow.data());
        const auto [insideBegin, insideEnd] = insideOf(y);
        for (int x = 0; x < width; ++x) {
            const double left = (x + 0.5) / scale;
            if (!meetsCard || x < card.x || x >= card.maxX()) {
                pixels[x] = blended(0, 1, 0, shadow.at(shadowLine, left));
                continue;
            }
            const bool isInside = x >= insideBegin && x < insideEnd;
            const double outside =
                isInside ? -edge - 1
                         : shape.distance({left - style.shadowMargin, top - style.shadowMargin},
                                          (edge + 1) / scale) *
                               scale;
            std::uint32_t colour = glassRow[static_cast<std::size_t>(x - card.x)];
            if (outside > -edge - 1)
                colour = blended(lightened(colour, edgeLight * (1 - coverage(outside + edge))),
                                 glass.opacity, coverage(outside), shadow.at(shadowLine, left));
            else if (glass.opacity < 1)
                colour = blended(colour, glass.opacity, 1, 0);
            pixels[x] = colour;
        }
    }
};

PixelRect cardIn(const CardStyle& style, double scale) {
    return pixelsTouchedBy(scaledBy(
        {style.shadowMargin, style.shadowMargin, style.card.width, style.card.height}, scale));
}

Pixels chromeOf(Pixels chrome, const CardStyle& style, double scale, GlassPicture glass) {
    Painter painter{style, scale, cardIn(style, scale).intersection(chrome.bounds()),
                    std::move(glass)};
    painter.glassRow.resize(static_cast<std::size_t>(painter.card.width));
    for (int y = 0; y < chrome.height; ++y) painter.drawRow(y, chrome.row(y), chrome.width);
    return chrome;
}

}  // namespace

Pixels makeCardChrome(const Pixels& backdrop, const CardStyle& style, double scale) {
    return chromeOf({backdrop.width, backdrop.height}, style, scale,
                    makeGlass(backdrop, cardIn(style, scale), style.textBottom, scale));
}

Pixels makeTintedCardChrome(int width, int height, const CardStyle& style, double scale) {
    return chromeOf({width, height}, style, scale,
                    makeTintedGlass({0, 0, width, height}, cardIn(style, scale), scale));
}

}  // namespace quorvane

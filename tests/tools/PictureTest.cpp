// Whole pictures of the card: what is drawn where. Symbols and tracks are held to a point, texts to
// a few, so that another version of a font passes and a shifted, missing or stray element does not.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <vector>

#include "tests/platform/linux/drawing/DrawnScene.hpp"
#include "tools/CardStill.hpp"

namespace quorvane {
namespace {

constexpr double kScale = 2;
constexpr double kExact = 1;
constexpr double kText = 4;

// An element and the box that its ink fills, in points.
struct Element {
    const char* name;
    Rect ink;
    double tolerance = kExact;
    bool isMirrored = true;  // right to left
};

const std::vector<Element>& elements() {
    static const std::vector<Element> all = {
        {"artwork", {20, 20, 64, 64}},
        {"title", {98, 25, 66, 13}, kText},
        {"artist", {98, 46, 119, 17}, kText},
        {"heart", {360, 33, 20, 18}},
        {"progress", {98, 80, 282, 4}},
        {"elapsed", {99, 91, 27, 10}, kText},
        {"remaining", {344, 91, 36, 10}, kText},
        {"previous", {112, 135, 34, 22}, kExact, false},
        {"pause", {190, 133, 20, 26}, kExact, false},
        {"next", {254, 135, 34, 22}, kExact, false},
        {"quiet speaker", {26.5, 187, 9, 14}},
        {"volume", {50, 191, 300, 6}},
        {"loud speaker", {358, 185, 21, 18}},
    };
    return all;
}

class Drawn {
public:
    Drawn(const std::string& title, const std::string& artist, CardRenderOptions options) {
        QuorvanePlayerState state;
        state.track = XPCTrack{};
        state.track->title = title;
        state.track->artist = artist;
        state.track->duration = 214;
        state.track->artworkData = SharedBytes{stripes(64, 64, {{1, 0, 0, 1}})};
        state.playerState = XPCPlayerState::playing;
        state.playerType = XPCPlayerType::appleMusic;
        state.isLoved = true;
        state.playerPosition = 83;
        state.volume = 64;
        options.backdrop = "none";
        options.scale = kScale;
        picture_ = (*CardStill::make(state, options))->draw(0);
    }

    bool hasInk(double x, double y) const {
        const auto* const row = cairo_image_surface_get_data(picture_.get()) +
                                std::ptrdiff_t{static_cast<int>(y * kScale)} *
                                    cairo_image_surface_get_stride(picture_.get());
        return reinterpret_cast<const std::uint32_t*>(row)[static_cast<int>(x * kScale)] >> 24 > 24;
    }
    // The box around all ink in the area; nothing without any.
    std::optional<Rect> ink(const Rect& area) const {
        double left = 1e9, top = 1e9, right = -1, bottom = -1;
        forEachPixel([&](double x, double y) {
            if (!area.contains({x, y}) || !hasInk(x, y)) return;
            left = std::min(left, x);
            top = std::min(top, y);
            right = std::max(right, x + 1 / kScale);
            bottom = std::max(bottom, y + 1 / kScale);
        });
        if (right < 0) return std::nullopt;
        return Rect{left, top, right - left, bottom - top};
    }
    int inkOutside(const std::vector<Rect>& areas) const {
        int count = 0;
        forEachPixel([&](double x, double y) {
            const auto holds = [&](const Rect& area) { return area.contains({x, y}); };
            count += hasInk(x, y) && std::ranges::none_of(areas, holds);
        });
        return count;
    }

private:
    static void forEachPixel(const std::function<void(double x, double y)>& visit) {
        for (double y = 0; y < 222; y += 1 / kScale)
            for (double x = 0; x < 400; x += 1 / kScale) visit(x, y);
    }

    CairoSurface picture_;
};

Rect grown(const Rect& rect, double by) {
    return {rect.x - by, rect.y - by, rect.width + 2 * by, rect.height + 2 * by};
}

void expectElements(const Drawn& drawn, const std::vector<Element>& expected) {
    std::vector<Rect> areas;
    for (const Element& element : expected) {
        const Rect area = grown(element.ink, element.tolerance);
        areas.push_back(area);
        const auto found = drawn.ink(area);
        ASSERT_TRUE(found) << element.name << " is missing";
        const Rect& wanted = element.ink;
        EXPECT_NEAR(found->x, wanted.x, element.tolerance) << element.name;
        EXPECT_NEAR(found->y, wanted.y, element.tolerance) << element.name;
        EXPECT_NEAR(found->maxX(), wanted.maxX(), element.tolerance) << element.name;
        EXPECT_NEAR(found->maxY(), wanted.maxY(), element.tolerance) << element.name;
    }
    EXPECT_EQ(drawn.inkOutside(areas), 0) << "something stands where nothing should";
}

std::vector<Element> changed(std::string_view name, const Rect& ink) {
    std::vector<Element> result = elements();
    std::ranges::find(result, name, &Element::name)->ink = ink;
    return result;
}

TEST(Picture, HasEachElementInItsPlace) {
    expectElements(Drawn{"Tideline", "Harbour Lights", {}}, elements());
}

TEST(Picture, IsMirroredRightToLeftButForTheTransport) {
    std::vector<Element> mirrored = elements();
    for (Element& element : mirrored)
        if (element.isMirrored) element.ink.x = 400 - element.ink.maxX();
    CardRenderOptions options;
    options.isRightToLeft = true;
    expectElements(Drawn{"Tideline", "Harbour Lights", options}, mirrored);
}

TEST(Picture, ShowsWhatIsHeld) {
    CardRenderOptions options;
    options.pressed = SceneControl::ID::playPause;
    expectElements(Drawn{"Tideline", "Harbour Lights", options},
                   changed("pause", {176, 122, 48, 48}));
    options.pressed = SceneControl::ID::volume;
    expectElements(Drawn{"Tideline", "Harbour Lights", options},
                   changed("volume", {50, 189, 300, 10}));
}

}  // namespace
}  // namespace quorvane

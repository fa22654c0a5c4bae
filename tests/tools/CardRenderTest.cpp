#include <gtest/gtest.h>

#include "tests/platform/linux/drawing/DrawnScene.hpp"
#include "tools/AnimatedPNG.hpp"
#include "tools/CardRenderOptions.hpp"
#include "tools/CardStill.hpp"

namespace quorvane {
namespace {

std::string problem(std::vector<std::string> arguments) {
    const auto options = parseCardRenderOptions(arguments);
    return options ? "" : options.error();
}

TEST(CardRenderOptions, TakesWhatTheHelpSays) {
    const auto options = parseCardRenderOptions(
        {"--at", "1.5", "a.json", "--pressed", "volume", "--direction", "rtl", "b.png"});
    ASSERT_TRUE(options);
    EXPECT_EQ(options->at, 1.5);
    EXPECT_EQ(options->pressed, SceneControl::ID::volume);
    EXPECT_EQ(options->isRightToLeft, true);
    EXPECT_EQ(options->stateFile, "a.json");
    EXPECT_EQ(options->outputFile, "b.png");
    EXPECT_TRUE(parseCardRenderOptions({"a", "--help"})->showsHelp);
    EXPECT_NE(problem({"a"}).find("1 given"), std::string::npos);
    EXPECT_NE(problem({"--scale", "9", "a", "b"}).find("0.5 to 8, not \"9\""), std::string::npos);
    EXPECT_NE(problem({"--scale", "2x", "a", "b"}).find("\"2x\""), std::string::npos);
    EXPECT_NE(problem({"--scale"}).find("needs a value"), std::string::npos);
    EXPECT_NE(problem({"--sclae", "2", "a", "b"}).find("--sclae"), std::string::npos);
}

CairoSurface filled(Color color, Rect area) {
    CairoSurface surface{cairo_image_surface_create(CAIRO_FORMAT_RGB24, 30, 20)};
    const CairoContext cairo{cairo_create(surface.get())};
    cairo_set_source_rgb(cairo.get(), color.red, color.green, color.blue);
    cairo_rectangle(cairo.get(), area.x, area.y, area.width, area.height);
    cairo_fill(cairo.get());
    return surface;
}

std::uint32_t numberAt(const Bytes& bytes, std::size_t place) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i)
        number = number << 8 | std::to_integer<std::uint32_t>(bytes[place + i]);
    return number;
}

TEST(AnimatedPNG, HoldsOnlyWhatChanges) {
    AnimatedPNG animation{10};
    animation.add(filled({1, 0, 0}, {0, 0, 30, 20}));
    animation.add(filled({1, 0, 0}, {0, 0, 30, 20}));
    CairoSurface last = filled({1, 0, 0}, {0, 0, 30, 20});
    const CairoContext cairo{cairo_create(last.get())};
    cairo_rectangle(cairo.get(), 5, 6, 7, 8);
    cairo_fill(cairo.get());
    cairo_surface_flush(last.get());
    animation.add(std::move(last));
    const Bytes file = animation.finish();
    EXPECT_TRUE(decodePicture(file, {30, 20}));  // its first frame, for those that know no more

    const std::string_view text = textOf(file);
    EXPECT_EQ(numberAt(file, text.find("acTL") + 4), 2u);
    const std::size_t first = text.find("fcTL");
    EXPECT_EQ(numberAt(file, first + 4), 0u);
    EXPECT_EQ(numberAt(file, first + 24), 200u << 16 | 1000u);  // two of ten a second
    const std::size_t second = text.find("fcTL", first + 4);
    EXPECT_EQ(numberAt(file, second + 4), 1u);
    EXPECT_EQ(numberAt(file, second + 8), 7u);
    EXPECT_EQ(numberAt(file, second + 12), 8u);
    EXPECT_EQ(numberAt(file, second + 16), 5u);
    EXPECT_EQ(numberAt(file, second + 20), 6u);
    EXPECT_EQ(numberAt(file, text.find("fdAT") + 4), 2u);
    EXPECT_EQ(text.substr(text.size() - 8), "IEND\xAE\x42\x60\x82");
}

TEST(CardStill, ShowsTheCardBeforeItsBackdrop) {
    QuorvanePlayerState state;
    state.track = XPCTrack{};
    state.track->artworkData = SharedBytes{stripes(64, 64, {{1, 0, 0, 1}})};
    state.playerState = XPCPlayerState::playing;
    CardRenderOptions options;
    options.scale = 1.25;
    options.backdrop = "#102030";
    const auto still = CardStill::make(state, options);
    ASSERT_TRUE(still);
    const CairoSurface picture = (*still)->draw(0);
    EXPECT_EQ(cairo_image_surface_get_width(picture.get()), 630);
    const auto at = [&](double x, double y) {
        const auto* const row = cairo_image_surface_get_data(picture.get()) +
                                std::ptrdiff_t{static_cast<int>(y * 1.25)} *
                                    cairo_image_surface_get_stride(picture.get());
        return reinterpret_cast<const std::uint32_t*>(row)[static_cast<int>(x * 1.25)] & 0xffffff;
    };
    EXPECT_EQ(at(52 + 52, 52 + 52), 0xff0000u);  // the artwork
    EXPECT_EQ(at(0, 0), 0x102030u);
    options.backdrop = "#10203";
    EXPECT_FALSE(CardStill::make(state, options));
}

}  // namespace
}  // namespace quorvane

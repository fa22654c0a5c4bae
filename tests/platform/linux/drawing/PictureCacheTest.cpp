#include "platform/linux/drawing/PictureCache.hpp"

#include <gtest/gtest.h>

#include "tests/platform/linux/drawing/DrawnScene.hpp"
#include "tests/support/ManualMainThread.hpp"
#include "tests/support/ManualSerialQueues.hpp"

namespace quorvane {
namespace {

constexpr Color kRed{1, 0, 0, 1};
constexpr Color kGreen{0, 1, 0, 1};
constexpr Color kBlue{0, 0, 1, 1};
constexpr Rect kFrame{10, 10, 40, 40};

using State = Image::State;

ImageRef image(Bytes bytes) {
    return std::make_shared<EncodedImage>(std::move(bytes), State::arriving);
}

DrawnScene drawn(const ImageRef& picture, double scale = 1) {
    CairoCanvas canvas{scale};
    Scene scene;
    scene.nodes = {ImageNode{kFrame, 8, picture}};
    return {canvas, scene, {60, 60}, scale};
}

bool isNear(std::uint32_t pixel, std::uint32_t wanted) {
    for (const int shift : {0, 8, 16, 24})
        if (std::abs(static_cast<int>(pixel >> shift & 0xff) -
                     static_cast<int>(wanted >> shift & 0xff)) > 12)
            return false;
    return true;
}

TEST(Pictures, FillTheirFrameCroppedAboutTheMiddle) {
    for (const double scale : {1.0, 1.25, 3.0}) {
        // Wide: the outer stripes are cropped. Small and large: scaled up and down.
        for (const int size : {20, 900}) {
            const DrawnScene wide =
                drawn(image(stripes(2 * size, size, {kRed, kGreen, kBlue, kRed})), scale);
            EXPECT_TRUE(kFrame.grownBy(1 / scale).covers(wide.ink()));
            EXPECT_TRUE(wide.ink().covers(kFrame));
            EXPECT_TRUE(isNear(wide.at(Point{16, 30}), 0xff00ff00)) << size << " at " << scale;
            EXPECT_TRUE(isNear(wide.at(Point{44, 30}), 0xff0000ff)) << size << " at " << scale;
        }
        const DrawnScene high = drawn(image(stripes(300, 900, {kRed, kBlue})), scale);
        EXPECT_TRUE(isNear(high.at(Point{16, 12}), 0xffff0000));
        EXPECT_EQ(high.at(Point{10, 10}), 0u);  // the rounded corner
    }
    const DrawnScene faint = drawn(image(stripes(40, 40, {{1, 0, 0, 0.5}})));
    EXPECT_TRUE(isNear(faint.at(30, 30), 0x80800000));
}

TEST(Pictures, AreNotDrawnWhenTheyCannotBeDecoded) {
    using namespace std::string_literals;
    Bytes broken = stripes(300, 300, {kRed, kBlue});
    broken[broken.size() / 2] ^= std::byte{0xff};
    // A complete picture of far more pixels than bytes.
    const CairoSurface many{cairo_image_surface_create(CAIRO_FORMAT_A1, 8000, 8000)};
    const Bytes huge = encoded(many.get());
    EXPECT_LT(huge.size(), 100'000u);
    // Pictures of 20,000 by 20,000 pixels whose decoder would draw all, although few are encoded.
    const std::string bitmap =
        "BM\x9A\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\x20\x4E\0\0\x20\x4E\0\0\x01\0\x18\0"s +
        std::string(24, '\0') + std::string(100, '\x7F');
    const std::string gif =
        "GIF89a\x20\x4E\x20\x4E\x80\0\0\0\0\0\xFF\xFF\xFF,\0\0\0\0\x20\x4E\x20\x4E\0\x02\x02\x4C\x01\0;"s;
    const Bytes all[] = {{},
                         copyOf(bytesOf("no picture at all")),
                         broken,
                         huge,
                         copyOf(bytesOf(bitmap)),
                         copyOf(bytesOf(gif))};
    for (const Bytes& bytes : all) {
        const ImageRef picture = image(bytes);
        EXPECT_TRUE(drawn(picture).ink().isEmpty());
        EXPECT_EQ(picture->state().get(), State::undecodable);
    }
    EXPECT_TRUE(drawn(std::make_shared<Image>()).ink().isEmpty()) << "an image of another kind";
}

struct Background {
    ManualMainThread mainThread;
    ManualSerialQueues queues;
    int arrivals = 0;
    std::unique_ptr<PictureCache> cache =
        std::make_unique<PictureCache>(queues.make()(""), mainThread.mainThread());
    Handle observation = cache->observe([this] { ++arrivals; });

    void decode() {
        queues.runAll();
        mainThread.run();
    }
};

TEST(PictureCache, DecodesInTheBackgroundAndOnlyOnce) {
    Background b;
    const ImageRef picture = image(stripes(80, 80, {kRed}));
    const auto width = [&](int size) {
        return cairo_image_surface_get_width(b.cache->picture(picture, {size, size}));
    };
    EXPECT_FALSE(b.cache->picture(picture, {40, 40}));
    EXPECT_FALSE(b.cache->picture(picture, {40, 40}));
    EXPECT_EQ(b.queues.waiting(""), 1u);
    b.queues.runAll();
    EXPECT_EQ(picture->state().get(), State::arriving);
    b.mainThread.run();
    EXPECT_EQ(picture->state().get(), State::ready);
    EXPECT_EQ(b.arrivals, 1);
    EXPECT_EQ(width(40), 40);
    EXPECT_EQ(b.queues.waiting(""), 0u);
    EXPECT_EQ(width(80), 40) << "until it is decoded at the other size";
    b.decode();
    EXPECT_EQ(width(80), 80);

    const ImageRef broken = image({});
    EXPECT_FALSE(b.cache->picture(broken, {40, 40}));
    b.decode();
    EXPECT_EQ(broken->state().get(), State::undecodable);
    EXPECT_FALSE(b.cache->picture(broken, {40, 40}));
    EXPECT_EQ(b.queues.waiting(""), 0u);
}

TEST(PictureCache, KeepsFewPicturesAndNoneOfImagesThatAreGone) {
    Background b;
    std::vector<ImageRef> images;
    for (int i = 0; i < 12; ++i) {
        images.push_back(image(stripes(8, 8, {kRed})));
        b.cache->picture(images.back(), {4, 4});
        b.decode();
    }
    EXPECT_TRUE(b.cache->picture(images.back(), {4, 4}));
    EXPECT_FALSE(b.cache->picture(images.front(), {4, 4}));
    const std::weak_ptr<const Image> gone = images.back();
    images.clear();
    b.decode();
    EXPECT_TRUE(gone.expired());
    EXPECT_EQ(b.arrivals, 13);
    b.cache->picture(image(stripes(8, 8, {kRed})), {4, 4});
    b.queues.runAll();
    b.cache.reset();
    b.mainThread.run();
    EXPECT_EQ(b.arrivals, 13) << "nothing arrives after its end";
}

}  // namespace
}  // namespace quorvane

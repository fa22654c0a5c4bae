// The canvas: one case for each kind of node, and pictures from their bytes.
#include "platform/macos/CoreGraphicsCanvas.hpp"

#include "platform/macos/CardWindowsMacOS.hpp"
#include "platform/macos/DecodedImage.hpp"
#include "platform/macos/PicturesMacOS.hpp"
#include "tests/macos_runtime/MacTest.hpp"
#include "tests/macos_runtime/fakes/AppKitFakes.hpp"
#include "tests/macos_runtime/fakes/DrawingFakes.hpp"
#include "tests/macos_runtime/fakes/ImageIOFakes.hpp"
#include "tests/support/ManualClock.hpp"

namespace quorvane {
namespace {

using macrt::takeTexts;
using macrt::Texts;

class CanvasMacOSTest : public macrt::MacTest {
protected:
    Texts draw(std::vector<SceneNode> nodes, bool isRightToLeft = false) {
        Texts texts;
        @autoreleasepool {
            macrt::takeCalls();
            macrt::drawing([&] {
                canvas_->draw({.nodes = std::move(nodes), .isRightToLeft = isRightToLeft});
            });
            texts = takeTexts();
        }
        return texts;
    }
    void TearDown() override {
        canvas_ = nullptr;
        MacTest::TearDown();
    }
    std::unique_ptr<CoreGraphicsCanvas> canvas_ = std::make_unique<CoreGraphicsCanvas>();
};

TEST_F(CanvasMacOSTest, FillsShapesWhoseCornersFit) {
    EXPECT_EQ(draw({ShapeNode{{10, 20, 40, 6}, 17, Color::white(0.25)}}),
              (Texts{"path 10 20 40 6 round 3 3", "color 1 1 1 0.25", "fill"}));
}

TEST_F(CanvasMacOSTest, DrawsPicturesUprightAndCropped) {
    const auto image =
        std::make_shared<DecodedImage>(CFHandle<CGImageRef>{macrt::makePicture("art", 300, 100)});
    EXPECT_EQ(draw({ImageNode{{20, 20, 64, 64}, 10, image}}),
              (Texts{"save", "path 20 20 64 64 round 10 10", "clip", "translate -44 84",
                     "scale 1 -1", "quality 3", "image art in 0 0 192 64", "restore"}));
    EXPECT_EQ(draw({ImageNode{{20, 20, 64, 64}, 10, nullptr}}), Texts{});
}

TEST_F(CanvasMacOSTest, DrawsLinesOnTheirBaselinesAndKeepsThem) {
    TextNode node{.frame = {100, 20, 200, 18}, .text = "abc", .font = {.size = 14}};
    node.color = Color::white(0.6);
    const std::string line = "line @\"abc\" {@\"NSFont\": <system 14 0>, "
                             "@\"CTForegroundColorFromContext\": YES}";
    const Texts left{"save",
                     "clip 100 20 200 18",
                     "color 1 1 1 0.6",
                     "text matrix 1 0 0 -1",
                     "text at 100 33",
                     line,
                     "restore"};
    EXPECT_EQ(draw({node}), left);
    Texts right = left;
    right[4] = "text at 270 33";
    EXPECT_EQ(draw({node}, true), right);
    // One line was laid out for all of them.
    EXPECT_NE(macrt::livingObjects().find("1 DrawingObject"), std::string::npos);
    node.text = "twenty-one letters...";
    node.font = {.size = 12, .weight = FontStyle::Weight::semibold, .hasTabularDigits = true};
    EXPECT_TRUE(draw({node})[5].starts_with(
        "line cut at 200 of kind 1 with @\"…\" {@\"NSFont\": <digits 12 0.3>, "));
    node.frame.width = 5;
    EXPECT_EQ(draw({node}).size(), 5u);  // not even the ellipsis fits
}

TEST_F(CanvasMacOSTest, ScrollsALineBetweenFadingEdges) {
    const TextNode node{.frame = {100, 20, 100, 18},
                        .text = "fifteen letters",
                        .scroll = TextNode::Scroll{.offset = 120, .gap = 40, .fade = 20}};
    const Texts texts = draw({node});
    ASSERT_EQ(texts.size(), 13u);
    EXPECT_EQ(texts[4], "begin layer");
    EXPECT_EQ(texts[5], "text at -20 33");
    EXPECT_EQ(texts[7], "text at 170 33");
    EXPECT_EQ(texts[9], "blend 23");
    EXPECT_EQ(texts[10],
              "gradient sRGB 0:0 0.04:0.011 0.08:0.12 0.12:0.42 0.16:0.8 0.2:1 0.8:1 0.84:0.8 "
              "0.88:0.42 0.92:0.12 0.96:0.011 1:0 from 100 20 to 200 20, 0");
    EXPECT_EQ(texts[11], "end layer");
}

TEST_F(CanvasMacOSTest, DrawsSymbolsInOneColourAndKeepsThem) {
    macrt::setKnownSymbols({"play.fill", "speaker.fill"});
    const SymbolNode play{{10, 10, 40, 40}, "play.fill", 34, Color::white(0.9)};
    const std::string image = "play.fill (size 34 weight 0, palette [<1 1 1 0.9>])";
    const std::string drawn = " drawInRect:{{20, 25}, {20, 10}} fromRect:{{0, 0}, {0, 0}} "
                              "operation:2 fraction:1 respectFlipped:YES hints:nil]";
    EXPECT_EQ(draw({play}), (Texts{"+[NSImage imageWithSystemSymbolName:@\"play.fill\" "
                                   "accessibilityDescription:nil]",
                                   "-[NSImage#1 imageWithSymbolConfiguration:"
                                   "<NSImageSymbolConfiguration#3>]",
                                   "save", "clip 10 10 40 40", "-[NSImage#2" + drawn, "restore"}));
    EXPECT_EQ(draw({play}, true),
              (Texts{"save", "clip 10 10 40 40", "-[NSImage#2" + drawn, "restore"}));
    const SymbolNode speaker{{10, 10, 40, 40}, "speaker.fill", 13, Color::white()};
    const Texts mirrored = draw({speaker}, true);
    EXPECT_EQ(mirrored[mirrored.size() - 4], "translate 60 0");
    EXPECT_EQ(mirrored[mirrored.size() - 3], "scale -1 1");
    // One that the system does not know is not drawn.
    EXPECT_EQ(draw({SymbolNode{{10, 10, 40, 40}, "none", 34, Color::white()}}).size(), 4u);
}

TEST_F(CanvasMacOSTest, DrawsGroupsAsOne) {
    EXPECT_EQ(draw({GroupBegin{.transform = {.scale = 0.9, .centre = {50, 60}, .offset = {1, 2}},
                               .opacity = 0.75,
                               .clip = Rect{0, 0, 30, 30},
                               .clipCornerRadius = 3},
                    GroupEnd{}}),
              (Texts{"save", "translate 51 62", "scale 0.9 0.9", "translate -50 -60",
                     "path 0 0 30 30 round 3 3", "clip", "alpha 0.75", "begin layer", "end layer",
                     "restore"}));
    canvas_->draw({.nodes = {ShapeNode{.frame = {0, 0, 1, 1}}}});  // outside of any drawing
    EXPECT_EQ(takeTexts(), Texts{});
}

TEST_F(CanvasMacOSTest, MeasuresAsItDraws) {
    ManualClock clock;
    const CardWindows windows = makeCardWindowsMacOS(clock.clock());
    EXPECT_EQ(windows.measureText("four", {}), 40);
    EXPECT_EQ(windows.measureText("four\nand", {}), 80);  // one line, whatever it holds
}

class PicturesMacOSTest : public macrt::MacTest {
protected:
    Texts decode(NSDictionary* properties, bool decodes = true) {
        macrt::setPictureProperties(properties, decodes);
        macrt::takeCalls();
        @autoreleasepool {
            image_ = decodeImageMacOS(bytesOf("bytes"));
        }
        return takeTexts();
    }
    void TearDown() override {
        image_ = nullptr;
        MacTest::TearDown();
    }
    ImageRef image_;
};

TEST_F(PicturesMacOSTest, AreDecodedNoLargerThanTheyAreShown) {
    EXPECT_EQ(decode(
                  @{@"PixelWidth" : @3000LL,
                    @"PixelHeight" : @1000LL}),
              (Texts{"source of <5 bytes> nil", "properties at 0 {@\"ShouldCache\": NO}",
                     "thumbnail at 0 {@\"FromImageAlways\": YES, @\"WithTransform\": YES, "
                     "@\"ShouldCacheImmediately\": YES, @\"MaxPixelSize\": 768}"}));
    ASSERT_NE(image_, nullptr);
    EXPECT_NE(dynamic_cast<const DecodedImage&>(*image_).pixels(), nullptr);
}

TEST_F(PicturesMacOSTest, AreNotDecodedWhenTheyAreNoneOrTooLarge) {
    EXPECT_EQ(decode(nil).size(), 2u);
    EXPECT_EQ(image_, nullptr);
    decode(@{@"PixelWidth" : @"wide", @"PixelHeight" : @10LL});
    EXPECT_EQ(image_, nullptr);
    EXPECT_EQ(decode(@{@"PixelWidth" : @16385LL, @"PixelHeight" : @10LL}).size(), 2u);
    EXPECT_EQ(image_, nullptr);
    // Its header lied.
    EXPECT_EQ(decode(
                  @{@"PixelWidth" : @10LL,
                    @"PixelHeight" : @10LL},
                  false)
                  .size(),
              3u);
    EXPECT_EQ(image_, nullptr);
}

}  // namespace
}  // namespace quorvane

// The canvas: one case for each kind of node, and pictures from their bytes.
#include "platform/macos/card/CoreGraphicsCanvas.hpp"

#import <ImageIO/ImageIO.h>

#include "platform/macos/card/CardMacOS.hpp"
#include "platform/macos/card/CoreGraphicsValues.hpp"
#include "tests/macos_runtime/MacTest.hpp"
#include "tests/macos_runtime/fakes/AppKitFakes.hpp"
#include "tests/support/ManualClock.hpp"

namespace quorvane {
namespace {

using macrt::setAnswer;

class CanvasMacOSTest : public macrt::MacTest {
protected:
    void SetUp() override {
        MacTest::SetUp();
        setAnswer("NSFont.ascender", 12);
        setAnswer("NSFont.descender", -4);
        setAnswer("NSImage.size", NSSize{20, 10});
    }
    void TearDown() override {
        canvas_ = nullptr;
        MacTest::TearDown();
    }
    void draw(const std::string& what, SceneNode node, bool isRightToLeft = false) {
        step(what);
        @autoreleasepool {
            macrt::drawing([&] {
                canvas_->draw({.nodes = {std::move(node)}, .isRightToLeft = isRightToLeft});
            });
        }
    }
    std::unique_ptr<CoreGraphicsCanvas> canvas_ = std::make_unique<CoreGraphicsCanvas>();
};

TEST_F(CanvasMacOSTest, DrawsShapesAndPictures) {
    draw("corners that fit", ShapeNode{{10, 20, 40, 6}, 17, Color::white(0.25)});
    draw("an edge", ShapeNode{{20, 20, 64, 64}, 10, Color::white(0.1), 0.5});
    setAnswer("CGImageGetWidth", 300);
    setAnswer("CGImageGetHeight", 100);
    const auto image = std::make_shared<DecodedImage>(
        CFHandle<CGImageRef>{static_cast<CGImageRef>(macrt::makeObject("art"))});
    draw("upright and cropped", ImageNode{{20, 20, 64, 64}, 10, image});
    draw("no picture", ImageNode{{20, 20, 64, 64}, 10, nullptr});
    step("outside of any drawing");
    canvas_->draw({.nodes = {ShapeNode{.frame = {0, 0, 1, 1}}}});
}

TEST_F(CanvasMacOSTest, DrawsLinesOnTheirBaselinesAndKeepsThem) {
    TextNode node{.frame = {100, 20, 200, 18}, .text = "abc", .font = {.size = 14}};
    node.color = Color::white(0.6);
    draw("at the left", node);
    draw("at the right, the line is kept", node, true);
    node.text = "twenty-one letters...";
    node.font = {.size = 12, .weight = FontStyle::Weight::semibold, .hasTabularDigits = true};
    draw("too long", node);
    node.frame.width = 5;
    draw("not even the ellipsis fits", node);
    draw("between fading edges",
         TextNode{.frame = {100, 20, 100, 18},
                  .text = "fifteen letters",
                  .scroll = TextNode::Scroll{.offset = 120, .gap = 40, .fade = 20}});
}

TEST_F(CanvasMacOSTest, DrawsSymbolsInOneColourAndKeepsThem) {
    const SymbolNode play{{10, 10, 40, 40}, "play.fill", 34, Color::white(0.9)};
    draw("a new one", play);
    draw("the same", play, true);
    draw("mirrored", SymbolNode{{10, 10, 40, 40}, "speaker.fill", 13, Color::white()}, true);
    draw("larger", SymbolNode{{10, 10, 40, 40}, "speaker.fill", 20, Color::white()});
    setAnswer("NSImage.imageWithSystemSymbolName:accessibilityDescription:", nil);
    draw("unknown", SymbolNode{{10, 10, 40, 40}, "none", 34, Color::white()});
}

TEST_F(CanvasMacOSTest, DrawsGroupsAsOne) {
    draw("its begin", GroupBegin{.transform = {.scale = 0.9, .centre = {50, 60}, .offset = {1, 2}},
                                 .opacity = 0.75,
                                 .clip = Rect{0, 0, 30, 30},
                                 .clipCornerRadius = 3});
    draw("its end", GroupEnd{});
}

TEST_F(CanvasMacOSTest, MeasuresAsItDraws) {
    ManualClock clock;
    const CardWindows windows = makeCardWindowsMacOS(clock.clock());
    EXPECT_EQ(windows.measureText("four", {}), 40);
    EXPECT_EQ(windows.measureText("four\nand", {}), 80);  // one line, whatever it holds
    EXPECT_FALSE(windows.reducesMotion());
    setAnswer("NSWorkspace.accessibilityDisplayShouldReduceMotion", true);
    EXPECT_TRUE(windows.reducesMotion());
}

TEST_F(CanvasMacOSTest, DecodesNoMorePixelsThanAreShown) {
    const auto decodes = [](NSDictionary* properties) {
        step("decoded");
        setAnswer("CGImageSourceCopyPropertiesAtIndex", properties);
        @autoreleasepool {
            const ImageRef image = decodeImageMacOS(bytesOf("bytes"));
            if (image == nullptr) return false;
            const auto& decoded = dynamic_cast<const DecodedImage&>(*image);
            step(macrt::describe((__bridge id)decoded.pixels()));
            return true;
        }
    };
    NSString* const width = (__bridge NSString*)kCGImagePropertyPixelWidth;
    NSString* const height = (__bridge NSString*)kCGImagePropertyPixelHeight;
    EXPECT_TRUE(decodes(@{width : @3000LL, height : @1000LL}));
    EXPECT_FALSE(decodes(nil));
    EXPECT_FALSE(decodes(@{width : @"wide", height : @10LL}));
    EXPECT_FALSE(decodes(@{width : @16385LL, height : @10LL}));
    setAnswer("CGImageSourceCreateThumbnailAtIndex", nil);  // its header lied
    EXPECT_FALSE(decodes(@{width : @10LL, height : @10LL}));
}

}  // namespace
}  // namespace quorvane

// The whole edition over the fakes: the core and every adapter, from the notice of a lock to the
// panel in its space, a click that goes out through the message port, and back.
#import <ImageIO/ImageIO.h>

#include <regex>

#include "AddOnKit/card/PlayerGeometry.hpp"
#include "QuorvaneKit/link/Identifiers.hpp"
#include "Quorvane_Lock_Screen/AddOnApp.hpp"
#include "platform/macos/foundation/FoundationValues.hpp"
#include "tests/macos_runtime/MacTest.hpp"
#include "tests/macos_runtime/fakes/AppKitFakes.hpp"
#include "tests/macos_runtime/fakes/SystemFakes.hpp"
#include "tests/support/FakePlatform.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using macrt::setAnswer;
using macrt::Texts;

// The window server's functions, by name.
constexpr char kConnection[] = "SLSMainConnectionID";
constexpr char kCreate[] = "SLSSpaceCreate";
constexpr char kSetLevel[] = "SLSSpaceSetAbsoluteLevel";
constexpr char kShow[] = "SLSShowSpaces";
constexpr char kAdd[] = "SLSSpaceAddWindowsAndRemoveFromSpaces";

template <const char* name, typename Result, typename... Arguments>
std::pair<const std::string, void*> noted() {
    Result (*const function)(Arguments...) = [](Arguments... arguments) {
        return macrt::called<Result>(name, arguments...);
    };
    return {name, reinterpret_cast<void*>(function)};
}

void* windowServerSymbol(const std::string& name) {
    const std::map<std::string, void*> symbols{
        noted<kConnection, int>(),
        noted<kCreate, std::uint64_t, int, int, const void*>(),
        noted<kSetLevel, int, int, std::uint64_t, int>(),
        noted<kShow, int, int, id>(),
        noted<kAdd, int, int, std::uint64_t, id, int>(),
    };
    const auto found = symbols.find(name);
    return found == symbols.end() ? nullptr : found->second;
}

class LockMacOSTest : public macrt::MacTest {
protected:
    // Serves the main application's ports and calls the body while the application runs.
    void run(const std::function<void()>& body) {
        setUpSystem();
        @autoreleasepool {
            char name[] = "/Applications/Quorvane Lock Screen.app/Contents/MacOS/x";
            char option[] = "--installed";
            char* arguments[] = {name, option};
            auto services = makeLiveServices(2, arguments, std::string{kAddOnBundleIdentifier});
            ASSERT_TRUE(services);
            auto platform = makeLivePlatform(*std::move(services));
            ASSERT_TRUE(platform);
            platform->windowServerLoader->open = [](const char* path) {
                macrt::note(std::string{"open "} + path);
                return reinterpret_cast<void*>(&windowServerSymbol);
            };
            platform->windowServerLoader->symbol = [](void*, const char* symbol) {
                return windowServerSymbol(symbol);
            };
            AddOnApp app{*platform};
            macrt::whileRunning() = [&] {
                const id delegate = NSApplication.sharedApplication.delegate;
                [delegate applicationDidFinishLaunching:nil];
                pass(0ms);
                body();
                [delegate applicationWillTerminate:nil];
                settle();
            };
            platform->services.application.run([&] { app.applicationDidFinishLaunching(); },
                                               [&] { app.applicationWillTerminate(); });
        }
        settle();
    }

    // Everything that waits runs, until nothing does.
    static void settle() {
        for (int i = 0; i < 20; ++i) {
            macrt::drainQueues();
            macrt::drainMainQueue();
        }
    }
    static void pass(Duration duration) {
        settle();
        macrt::passTime(duration);
        settle();
    }
    static void notice(NSString* name) {
        @autoreleasepool {
            macrt::deliverDistributed(name);
            settle();
        }
    }
    void click(Point onCard) {
        // In the window's coordinates, with y growing upward.
        const NSPoint place = {52 + onCard.x, 274 - onCard.y};
        NSEvent* const down = macrt::makeEvent(NSEventTypeLeftMouseDown, place);
        NSEvent* const up = macrt::makeEvent(NSEventTypeLeftMouseUp, place);
        [panel_ sendEvent:down];
        [content() mouseDown:down];
        [panel_ sendEvent:up];
        [content() mouseUp:up];
        settle();
    }
    NSView* content() {
        NSView* const stage = macrt::subviewsOf(panel_.contentView).firstObject;
        NSGlassEffectView* const glass = macrt::itemsOf(macrt::subviewsOf(stage))[1];
        return glass.contentView;
    }
    // Leaves of the calls until here only those that contain one of these in the transcript.
    // Without the numbers of views and what belongs to them, for cards are also made in advance.
    void keep(std::initializer_list<std::string_view> parts) {
        for (const macrt::Call& call : macrt::takeCalls()) {
            if (call.text.starts_with("-[CardPanel#1 initWith"))
                panel_ = (__bridge NSPanel*)call.receiver;
            if (std::ranges::any_of(
                    parts, [&](auto part) { return call.text.find(part) != std::string::npos; }))
                kept_.push_back(std::regex_replace(call.text, kNumbers, "$1"));
        }
    }
    void TearDown() override {
        macrt::takeCalls();
        for (const std::string& text : kept_) macrt::note(text);
        MacTest::TearDown();
    }

    MemoryPorts ports_;
    ScriptedMainApp mainApp_{ports_, [] { return std::chrono::system_clock::now(); }};
    __unsafe_unretained NSPanel* panel_ = nil;

private:
    inline static const std::regex kNumbers{"(View|Layer|Font|Context)#[0-9]+"};
    Texts kept_;

    void setUpSystem() {
        NSString* const identifier = macrt::makeString(kAddOnBundleIdentifier);
        NSString* const bundle = @"/Applications/Quorvane Lock Screen.app";
        setAnswer("NSBundle.infoDictionary", @{@"CFBundleShortVersionString" : @"1.2.3"});
        setAnswer("NSBundle.bundleURL", urlFrom(macrt::textOf(bundle)));
        setAnswer("NSBundle.bundleIdentifier", identifier);
        setAnswer("NSProcessInfo.processIdentifier", 4711);
        setAnswer("NSProcessInfo.operatingSystemVersion", NSOperatingSystemVersion{26, 1, 2});
        setAnswer("NSProcessInfo.beginActivityWithOptions:reason:", [NSObject new]);
        setAnswer("NSRunningApplication.processIdentifier", 4711);
        macrt::files()[macrt::textOf(bundle)] = "a folder";
        macrt::files()[macrt::textOf(bundle) + "/Contents/Info.plist"] = "a property list";
        setAnswer("NSPropertyListSerialization.propertyListWithData:options:format:error:",
                  @{@"CFBundleIdentifier" : identifier});
        setAnswer("NSFileManager.URLsForDirectory:inDomains:",
                  @[ urlFrom("/Users/u/Library/Application Support") ]);
        setAnswer("NSFileManager.containerURLForSecurityApplicationGroupIdentifier:",
                  urlFrom("/Groups/quorvane"));
        macrt::files()["/Groups/quorvane/ipc-secret"] = textOf(mainApp_.secret);
        setAnswer(
            "CGSessionCopyCurrentDictionary",
            @{@"CGSSessionOnConsole" : @YES});
        macrt::setScreens({{{{0, 0}, {1920, 1080}}, 2}});
        setAnswer(
            "CGImageSourceCopyPropertiesAtIndex", @{
                (__bridge NSString*)kCGImagePropertyPixelWidth : @600LL,
                (__bridge NSString*)kCGImagePropertyPixelHeight : @600LL
            });
        setAnswer(kConnection, 77);
        setAnswer(kCreate, 9);
        setAnswer("CGImageGetWidth", 256);
        setAnswer("CGImageGetHeight", 256);
        macrt::setConversion([](NSPoint p) { return NSPoint{p.x - 52, 274 - p.y}; });
        const std::string base = "group.example.quillon.Quorvane.messageport";
        for (const std::string& name :
             {base, base + ".query.0", base + ".query.1", base + ".query.2", base + ".query.3"})
            macrt::servePort(name, [this, name](const macrt::PortMessage& message) {
                return answer(name, message);
            });
    }
    macrt::PortAnswer answer(const std::string& name, const macrt::PortMessage& message) {
        const auto port = ports_.connectPort()(name);
        if (port == nullptr) return {kPortTransportError, {}};
        const PortReply reply = port->send({.messageID = message.identifier,
                                            .body = bytesOf(message.body),
                                            .awaitsReply = message.awaitsReply});
        if (!reply.body) return {reply.status, {}};
        return {reply.status, std::string{textOf(*reply.body)}};
    }
};

TEST_F(LockMacOSTest, OneLockFromItsNoticeToThePanelInItsSpaceAndBack) {
    run([this] {
        keep({"SMAppService#1 register", ":app 1 launch: ", "lockScreenConfigurationChanged"});
        EXPECT_EQ(mainApp_.hellos.size(), 1u);

        notice(@"com.apple.screenIsLocked");
        notice(@"com.apple.screenLockUIIsShown");
        pass(799ms);
        keep({"CardPanel"});
        step("the reveal delay has passed");
        pass(1ms);
        // What the panel and the window server are told, up to its fade.
        keep({"-- ", "setLevel:", "setContentView:<CardRootView", "orderFront", "open /System",
              "(77,", "beginActivity", "setHidden:NO", "addAnimation",
              "setDuration:", "setAlphaValue:1"});
        EXPECT_FALSE(panel_.ignoresMouseEvents);

        macrt::drawing([this] { [content() drawRect:{{0, 0}, {400, 222}}]; });
        keep({"CTLineDraw(@\"Reed\"", "CGContextDrawImage"});

        const Rect next = PlayerGeometry::make(true, false).next;
        click({next.midX(), next.midY()});
        EXPECT_EQ(mainApp_.commands, Texts{"nextTrack"});
        EXPECT_EQ(mainApp_.strangers, 0);  // every request bore the secret
        keep({"mouse down"});

        notice(@"com.apple.screenLockUIIsHidden");
        notice(@"com.apple.screenIsUnlocked");
        keep({"CardPanel#1 order", "CardPanel#1 close", "setContentView:nil", "endActivity"});
        macrt::finishAnimations();
        drainPool();
        EXPECT_EQ(macrt::livingObjects().find("CardPanel"), std::string::npos);
        EXPECT_EQ(macrt::livingObjects().find("View"), std::string::npos);
    });
    EXPECT_EQ(macrt::activeSources(), 0u);
}

}  // namespace
}  // namespace quorvane

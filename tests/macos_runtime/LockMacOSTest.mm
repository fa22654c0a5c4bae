// The whole edition over the fakes: the core and every adapter, from the notice of a lock to the
// panel in its space, a click that goes out through the message port, and back.
#include <set>

#include "AddOnKit/PlayerGeometry.hpp"
#include "QuorvaneKit/Identifiers.hpp"
#include "Quorvane_Lock_Screen/AddOnApp.hpp"
#include "tests/macos_runtime/MacTest.hpp"
#include "tests/macos_runtime/fakes/AppKitFakes.hpp"
#include "tests/macos_runtime/fakes/Collections.hpp"
#include "tests/macos_runtime/fakes/DispatchFakes.hpp"
#include "tests/macos_runtime/fakes/DrawingFakes.hpp"
#include "tests/macos_runtime/fakes/ImageIOFakes.hpp"
#include "tests/macos_runtime/fakes/NoticeFakes.hpp"
#include "tests/macos_runtime/fakes/PortFakes.hpp"
#include "tests/macos_runtime/fakes/SystemFakes.hpp"
#include "tests/macos_runtime/fakes/Values.hpp"
#include "tests/support/FakePlatform.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using macrt::answers;
using macrt::takeTexts;
using macrt::Texts;

// The window server's interface: what it is called with is noted.
struct FakeWindowServer {
    static void* symbol(const char* name) {
        const std::map<std::string_view, void*> symbols{
            {"SLSMainConnectionID", reinterpret_cast<void*>(+[] { return 77; })},
            {"SLSSpaceCreate",
             reinterpret_cast<void*>(
                 +[](std::int32_t, std::int32_t, const void*) -> std::uint64_t { return 9; })},
            {"SLSSpaceSetAbsoluteLevel",
             reinterpret_cast<void*>(
                 +[](std::int32_t connection, std::uint64_t space, std::int32_t level) {
                     macrt::note("level " + std::to_string(connection) + " " +
                                 std::to_string(space) + " " + std::to_string(level));
                     return 0;
                 })},
            {"SLSShowSpaces", reinterpret_cast<void*>(+[](std::int32_t, CFArrayRef spaces) {
                 macrt::note("show " + macrt::describe((__bridge id)spaces));
                 return 0;
             })},
            {"SLSSpaceAddWindowsAndRemoveFromSpaces",
             reinterpret_cast<void*>(
                 +[](std::int32_t, std::uint64_t space, CFArrayRef windows, std::int32_t options) {
                     macrt::note("add " + macrt::describe((__bridge id)windows) + " to " +
                                 std::to_string(space) + ", " + std::to_string(options));
                     return 0;
                 })},
        };
        const auto found = symbols.find(name);
        return found == symbols.end() ? nullptr : found->second;
    }
    using CFArrayRef = const void*;
};

class LockMacOSTest : public macrt::MacTest {
protected:
    // Serves the main application's ports and calls the body while the application runs.
    void run(const std::function<void()>& body, std::string option = "--installed") {
        setUpSystem();
        @autoreleasepool {
            char name[] = "/Applications/Quorvane Lock Screen.app/Contents/MacOS/x";
            char* arguments[] = {name, option.data()};
            auto services = makeLiveServices(2, arguments, std::string{kAddOnBundleIdentifier});
            ASSERT_TRUE(services);
            auto platform = makeLivePlatform(*std::move(services));
            ASSERT_TRUE(platform);
            platform->windowServerLoader->open = [](const char* path) {
                macrt::note(std::string{"open "} + path);
                return reinterpret_cast<void*>(&FakeWindowServer::symbol);
            };
            platform->windowServerLoader->symbol = [](void*, const char* symbol) {
                return FakeWindowServer::symbol(symbol);
            };
            AddOnApp app{*platform};
            answers().whileRunning = [&] {
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
    // The first panel of which these calls tell.
    void findPanel(const std::vector<macrt::Call>& calls) {
        for (const macrt::Call& call : calls)
            if (call.text.starts_with("-[CardPanel#1 initWith"))
                panel_ = (__bridge NSPanel*)call.receiver;
        ASSERT_NE(panel_, nil);
    }

    MemoryPorts ports_;
    ScriptedMainApp mainApp_{ports_, [] { return std::chrono::system_clock::now(); }};
    __unsafe_unretained NSPanel* panel_ = nil;

private:
    void setUpSystem() {
        answers().infoDictionary = @{@"CFBundleShortVersionString" : @"1.2.3"};
        const std::string bundle = "/Applications/Quorvane Lock Screen.app";
        macrt::files()[bundle] = "a folder";
        macrt::files()[bundle + "/Contents/Info.plist"] = "a property list";
        answers().propertyList = @{@"CFBundleIdentifier" : answers().bundleIdentifier};
        answers().copies = {{.pid = 4711}};
        answers().session = @{@"CGSSessionOnConsole" : @YES};
        macrt::files()["/Groups/group.example.quillon.Quorvane/ipc-secret"] =
            textOf(mainApp_.secret);
        macrt::setScreens({{{{0, 0}, {1920, 1080}}, 2}});
        macrt::setPictureProperties(
            @{@"PixelWidth" : @600LL,
              @"PixelHeight" : @600LL},
            true);
        macrt::setKnownSymbols({"forward.fill"});
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
        Texts texts = takeTexts();
        for (const std::string text :
             {"-[SMAppService#1 registerAndReturnError:pointer]",
              "log example.quillon.Quorvane.LockScreenAddOn:app 1 launch: 1.2.3, pid 4711",
              "Darwin observe example.quillon.Quorvane.lockScreenConfigurationChanged 4"})
            EXPECT_EQ(std::ranges::count(texts, text), 1) << text;
        EXPECT_EQ(mainApp_.hellos.size(), 1u);

        notice(@"com.apple.screenIsLocked");
        notice(@"com.apple.screenLockUIIsShown");
        pass(799ms);
        EXPECT_EQ(takeTexts("CardPanel"), Texts{});
        pass(1ms);
        const auto calls = macrt::takeCalls();
        findPanel(calls);
        // From the panel's making to its fade, what the window server and the views are told.
        Texts steps;
        const std::set<std::string> wanted{
            "-[CardPanel#1 setLevel:1000]",
            "-[CardPanel#1 setContentView:<CardRootView#1>]",
            "-[CardPanel#1 orderFrontRegardless]",
            "open /System/Library/PrivateFrameworks/SkyLight.framework/SkyLight",
            "level 77 9 400",
            "show [9]",
            "add [41] to 9, 7",
            "-[NSProcessInfo#1 beginActivityWithOptions:15728639 reason:@\"Showing the Quorvane "
            "player on the lock screen\"]",
            "-[NSView#1 setHidden:NO]",
            "-[NSAnimationContext#2 setDuration:0.35]",
            "-[CardPanel#1 setAlphaValue:1]"};
        for (const macrt::Call& call : calls)
            if (wanted.contains(call.text) || call.text.find("addAnimation") != std::string::npos)
                steps.push_back(call.text);
        EXPECT_EQ(
            steps,
            (Texts{"-[CardPanel#1 setLevel:1000]", "-[CardPanel#1 setContentView:<CardRootView#1>]",
                   "-[CardPanel#1 orderFrontRegardless]",
                   "open /System/Library/PrivateFrameworks/SkyLight.framework/SkyLight",
                   "level 77 9 400", "show [9]", "add [41] to 9, 7",
                   "-[NSProcessInfo#1 beginActivityWithOptions:15728639 "
                   "reason:@\"Showing the Quorvane player on the lock screen\"]",
                   "-[NSView#1 setHidden:NO]",
                   "-[CALayer#1 addAnimation:<CASpringAnimation#1> "
                   "forKey:@\"entrance.transform\"]",
                   "-[NSAnimationContext#2 setDuration:0.35]", "-[CardPanel#1 setAlphaValue:1]"}));
        EXPECT_FALSE(panel_.ignoresMouseEvents);

        macrt::drawing([this] { [content() drawRect:{{0, 0}, {400, 222}}]; });
        texts = takeTexts();
        EXPECT_EQ(
            std::ranges::count_if(
                texts, [](const std::string& text) { return text.starts_with("line @\"Reed\""); }),
            1);
        EXPECT_EQ(std::ranges::count(texts, "image thumbnail in 0 0 64 64"), 1);

        const Rect next = PlayerGeometry::make(true, false).next;
        click({next.midX(), next.midY()});
        EXPECT_EQ(mainApp_.commands, Texts{"nextTrack"});
        EXPECT_EQ(mainApp_.strangers, 0);  // every request bore the secret
        EXPECT_EQ(takeTexts("mouse down"),
                  Texts{"log example.quillon.Quorvane.LockScreenAddOn:presenter 2 window 41 mouse "
                        "down at {" +
                        std::to_string(static_cast<int>(52 + next.midX())) + ", " +
                        std::to_string(static_cast<int>(274 - next.midY())) + "}"});

        notice(@"com.apple.screenLockUIIsHidden");
        notice(@"com.apple.screenIsUnlocked");
        texts = takeTexts();
        std::erase_if(texts, [](const std::string& text) {
            return text.find("CardPanel#1 order") == std::string::npos &&
                   text.find("CardPanel#1 close") == std::string::npos &&
                   text.find("setContentView:nil") == std::string::npos &&
                   text.find("endActivity") == std::string::npos;
        });
        EXPECT_EQ(texts,
                  (Texts{"-[CardPanel#1 orderOut:nil]", "-[CardPanel#1 setContentView:nil]",
                         "-[CardPanel#1 close]", "-[NSProcessInfo#1 endActivity:<NSObject#1>]"}));
        macrt::finishAnimations();
        drainPool();
        EXPECT_EQ(macrt::livingObjects().find("CardPanel"), std::string::npos);
        EXPECT_EQ(macrt::livingObjects().find("View"), std::string::npos);
    });
    EXPECT_EQ(macrt::activeSources(), 0u);
}

TEST_F(LockMacOSTest, AScreenThatComesRebuildsTheWindowsAtOnce) {
    run([] {
        notice(@"com.apple.screenIsLocked");
        notice(@"com.apple.screenLockUIIsShown");
        pass(800ms);
        macrt::takeCalls();
        macrt::setScreens({{{{0, 0}, {1920, 1080}}, 2}, {{{1920, 0}, {800, 600}}, 1}});
        macrt::deliver(NSNotificationCenter.defaultCenter,
                       NSApplicationDidChangeScreenParametersNotification);
        settle();
        Texts texts = takeTexts();
        std::erase_if(texts, [](const std::string& text) {
            return text.find("initWithContentRect") == std::string::npos &&
                   text.find("add [") == std::string::npos &&
                   text.find("CardPanel#1 close") == std::string::npos &&
                   text.find("addAnimation") == std::string::npos;
        });
        const std::string rest = " styleMask:128 backing:2 defer:NO]";
        EXPECT_EQ(texts,
                  (Texts{"-[CardPanel#1 close]",
                         "-[CardPanel#2 initWithContentRect:{{708, 482}, {504, 326}}" + rest,
                         "add [42] to 9, 7",
                         "-[CardPanel#3 initWithContentRect:{{2068, 146}, {504, 326}}" + rest,
                         "add [43] to 9, 7"}));
    });
}

TEST_F(LockMacOSTest, TheInstallerIsAnsweredAndObeyed) {
    run([] {
        takeTexts();
        notice(@"example.quillon.Quorvane.LockScreenAddOn.statusRequest");
        EXPECT_EQ(takeTexts("postNotification"),
                  Texts{"-[NSDistributedNotificationCenter#1 "
                        "postNotificationName:@\"example.quillon.Quorvane.LockScreenAddOn.status\" "
                        "object:nil userInfo:{@\"connected\": YES, @\"version\": @\"1.2.3\"} "
                        "deliverImmediately:YES]"});
        notice(@"example.quillon.Quorvane.LockScreenAddOn.quit");
        EXPECT_EQ(takeTexts("terminate:"), Texts{"-[NSApplication#1 terminate:nil]"});
    });
}

TEST_F(LockMacOSTest, AnUninstallLeavesNothing) {
    answers().loginItem = 1;
    run(
        [] {
            Texts texts = takeTexts();
            std::erase_if(texts, [](const std::string& text) {
                return text.find("SMAppService") == std::string::npos &&
                       text.find("removeItem") == std::string::npos &&
                       text.find("removePersistentDomain") == std::string::npos &&
                       text.find("terminate:") == std::string::npos;
            });
            const std::string name = "example.quillon.Quorvane.LockScreenAddOn";
            EXPECT_EQ(texts,
                      (Texts{"-[SMAppService#1 unregisterAndReturnError:pointer]",
                             "-[NSFileManager#1 removeItemAtURL:file:///Users/u/Library/"
                             "Application Support/" +
                                 name + " error:pointer]",
                             "-[NSFileManager#1 removeItemAtURL:file:///Applications/"
                             "Quorvane Lock Screen.app error:pointer]",
                             "-[NSUserDefaults#1 removePersistentDomainForName:@\"" + name + "\"]",
                             "-[NSApplication#1 terminate:nil]"}));
        },
        "--uninstall");
}

TEST_F(LockMacOSTest, AMainApplicationThatIsGoneLeavesNoCard) {
    mainApp_.quit();
    run([] {
        notice(@"com.apple.screenIsLocked");
        notice(@"com.apple.screenLockUIIsShown");
        pass(800ms);
        EXPECT_EQ(takeTexts("CardPanel"), Texts{});
    });
}

}  // namespace
}  // namespace quorvane

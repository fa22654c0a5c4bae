#include "lockers/LockerRules.hpp"

#include <gtest/gtest.h>

namespace quorvane {
namespace {

constexpr Rect kLeft{0, 0, 800, 600};
constexpr Rect kRight{800, 0, 1024, 768};
constexpr Rect kAll{0, 0, 1824, 768};

WindowFacts window(std::uint32_t number, const Rect& frame, const char* instance = "",
                   const char* name = "") {
    // With the server's numbering: windows of one client share the upper digits.
    return {.window = number,
            .client = number & ~0xffu,
            .frame = frame,
            .isMapped = true,
            .isOverrideRedirect = true,
            .instance = instance,
            .className = name};
}

LockFacts facts(std::vector<WindowFacts> windows, KeyboardHold keyboard = KeyboardHold::unknown) {
    return {.windows = std::move(windows),
            .monitors = {kLeft, kRight},
            .keyboard = keyboard,
            .pointerIsHeld = keyboard == KeyboardHold::isHeld,
            .screenSaverIsLocked = false,
            .lastFound = {}};
}

std::vector<std::uint32_t> found(const LockFacts& facts) {
    std::vector<std::uint32_t> numbers;
    for (const FoundLocker& locker : findLockers(facts)) numbers.push_back(locker.window);
    return numbers;
}

using Numbers = std::vector<std::uint32_t>;

TEST(LockerRules, KnowLockersByTheirClass) {
    struct Case {
        const char* instance;
        const char* name;
        bool isLocker;
    };
    const Case cases[] = {
        {"i3lock", "i3lock", true},
        {"background", "xsecurelock", true},
        {"obscurer", "xsecurelock", false},
        {"dim", "xsecurelock-dimmer", false},
        {"xlock", "XLock", true},
        {"kscreenlocker_greet", "kscreenlocker_greet", true},
        {"mate-screensaver", "Mate-screensaver", true},
        {"Navigator", "firefox", false},
        {"", "", false},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(std::string{each.instance} + "/" + each.name);
        // The keyboard does not matter for a known locker: i3lock's window precedes its grab.
        for (const auto keyboard : {KeyboardHold::unknown, KeyboardHold::isFree}) {
            const auto lockers =
                findLockers(facts({window(0x101, kAll, each.instance, each.name)}, keyboard));
            ASSERT_EQ(lockers.size(), each.isLocker ? 1u : 0u);
            for (const FoundLocker& locker : lockers)
                EXPECT_EQ(locker, (FoundLocker{0x101, kAll, {190, 190}}));
        }
    }
}

TEST(LockerRules, WantAVisibleWindowOverAWholeMonitor) {
    const WindowFacts good = window(0x101, kRight, "i3lock", "i3lock");
    EXPECT_EQ(found(facts({good})), Numbers{0x101});
    for (const auto flag :
         {&WindowFacts::isMapped, &WindowFacts::isOverrideRedirect, &WindowFacts::isDrawable}) {
        WindowFacts bad = good;
        bad.*flag = false;
        EXPECT_EQ(found(facts({bad})), Numbers{});
    }
    for (const Rect& frame : {Rect{801, 0, 1023, 768}, Rect{800, 0, 1023, 768},
                              Rect{800, 1, 1024, 767}, Rect{800, 0, 1024, 767}}) {
        WindowFacts bad = good;
        bad.frame = frame;
        EXPECT_EQ(found(facts({bad})), Numbers{}) << describe(frame);
    }
}

TEST(LockerRules, AskMoreOfUnknownClients) {
    const WindowFacts left = window(0x101, kLeft);
    const WindowFacts right = window(0x102, kRight);
    const auto held = KeyboardHold::isHeld;
    EXPECT_EQ(found(facts({left, right}, held)), (Numbers{0x101, 0x102}));
    EXPECT_EQ(found(facts({left, right}, KeyboardHold::unknown)), Numbers{});
    EXPECT_EQ(found(facts({left, right}, KeyboardHold::isFree)), Numbers{});
    EXPECT_EQ(found(facts({left}, held)), Numbers{}) << "a game on one monitor";
    EXPECT_EQ(found(facts({left, window(0x202, kRight)}, held)), Numbers{}) << "two clients";

    WindowFacts ordinary = window(0x301, {10, 10, 100, 100});
    EXPECT_EQ(found(facts({ordinary, left, right}, held)), (Numbers{0x101, 0x102}))
        << "a notification";
    ordinary.isOfDesktop = true;  // a frame of the window manager's
    EXPECT_EQ(found(facts({ordinary, left, right}, held)), Numbers{0x102});
    EXPECT_EQ(found(facts({left, right, ordinary}, held)), (Numbers{0x101, 0x102}));
    ordinary.isOfDesktop = false;
    ordinary.isOverrideRedirect = false;  // a window without a frame
    EXPECT_EQ(found(facts({ordinary, left, right}, held)), Numbers{0x102});
    ordinary.isMapped = false;
    EXPECT_EQ(found(facts({ordinary, left, right}, held)), (Numbers{0x101, 0x102}));

    LockFacts keyboardOnly = facts({left, right}, held);
    keyboardOnly.pointerIsHeld = false;
    EXPECT_EQ(found(keyboardOnly), Numbers{}) << "a viewer of another machine";
    WindowFacts game = window(0x103, {10, 10, 100, 100});
    game.isMapped = game.isOverrideRedirect = false;
    EXPECT_EQ(found(facts({left, right, game}, held)), (Numbers{0x101, 0x102}));
    game.wasShown = true;
    EXPECT_EQ(found(facts({left, right, game}, held)), Numbers{}) << "an ordinary window is hidden";
    WindowFacts viewer = window(0x101, kAll);
    viewer.isOfManaged = true;
    EXPECT_EQ(found(facts({viewer}, held)), Numbers{});

    EXPECT_EQ(found(facts({window(0x501, kAll, "slop", "slop")}, held)), Numbers{})
        << "a selection of an area for a screenshot";
    WindowFacts output = window(0x401, kAll);
    output.isOfDesktop = true;
    EXPECT_EQ(found(facts({output}, held)), Numbers{}) << "the compositor's own";
}

TEST(LockerRules, FollowTheUser) {
    LockFacts named =
        facts({window(0x201, kRight, "a", "Mine"), window(0x101, kAll, "b", "Viewer")},
              KeyboardHold::isHeld);
    EXPECT_EQ(found(named), Numbers{0x101});
    named.names = LockerNames::parse("Other,Mine", "Viewer,,");
    EXPECT_EQ(named.names.overlays, std::vector<std::string>{"Viewer"});
    EXPECT_EQ(found(named), Numbers{0x201});
    named.names = LockerNames::parse("", "");
    EXPECT_EQ(found(named), Numbers{0x101});
}

TEST(LockerRules, KeepWhatTheyFoundWhileItIsMapped) {
    LockFacts grown = facts({window(0x101, {0, 0, 640, 480}, "i3lock", "i3lock")});
    EXPECT_EQ(found(grown), Numbers{});
    grown.lastFound = {0x101};
    EXPECT_EQ(found(grown), Numbers{0x101});
    grown.windows.front().isMapped = false;
    EXPECT_EQ(found(grown), Numbers{});

    LockFacts unknown = facts({window(0x101, {0, 0, 640, 480})}, KeyboardHold::isHeld);
    unknown.lastFound = {0x101};
    unknown.pointerIsHeld = false;
    EXPECT_EQ(found(unknown), Numbers{0x101});
    unknown.keyboard = KeyboardHold::isFree;
    EXPECT_EQ(found(unknown), Numbers{});
}

TEST(LockerRules, TellABlankScreenFromALockedOne) {
    // The fading window has no class, and belongs to the same client.
    WindowFacts hidden = window(0x104, {0, 0, 1, 1}, "xscreensaver", "XScreenSaver");
    hidden.isMapped = false;
    LockFacts saver =
        facts({window(0x103, kAll), window(0x102, kRight, "xscreensaver", "XScreenSaver"),
               window(0x101, kLeft, "xscreensaver", "XScreenSaver")},
              KeyboardHold::isHeld);
    EXPECT_EQ(found(saver), Numbers{}) << "only blank";
    saver.screenSaverIsLocked = true;
    EXPECT_EQ(found(saver), (Numbers{0x102, 0x101}));
    EXPECT_GT(findLockers(saver).front().prompt.height, 190);
    saver.keyboard = KeyboardHold::unknown;  // locked before the watcher started
    EXPECT_EQ(found(saver), (Numbers{0x102, 0x101}));
    saver.keyboard = KeyboardHold::isFree;  // the process that guards the screen has ended
    EXPECT_EQ(found(saver), Numbers{});

    LockFacts fading = facts({window(0x103, kAll), hidden}, KeyboardHold::isHeld);
    EXPECT_EQ(found(fading), Numbers{}) << "fading out before its windows are up";
}

}  // namespace
}  // namespace quorvane

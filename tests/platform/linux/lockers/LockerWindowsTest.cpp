// Which windows on a real X server count as lockers, and what the watcher reports.
#include <random>

#include "platform/linux/x11/TopLevelWindows.hpp"
#include "tests/platform/linux/lockers/LockFixture.hpp"

namespace quorvane {
namespace {

using LockerWindows = LockFixture;

TEST_F(LockerWindows, TellOfAKnownLockerAsItComesAndGoes) {
    useTwoMonitors();
    watch();
    int token = 0;
    EXPECT_NE(sources.notifyRegisterCheck("com.apple.something", token), 0u);
    EXPECT_EQ(sources.notifyRegisterCheck("com.apple.sessionagent.screenLockUIIsShowing", token),
              0u);
    const auto isUIShown = [&] {
        std::uint64_t state = 7;
        EXPECT_EQ(sources.notifyGetState(token, state), 0u);
        return state;
    };
    EXPECT_EQ(isUIShown(), 0u);
    EXPECT_FALSE(isLocked());
    const xcb_window_t window = standLocker();
    EXPECT_EQ(takeSettled(), kLockedAndShown);
    EXPECT_EQ(isUIShown(), 1u);
    EXPECT_TRUE(isLocked());
    EXPECT_EQ(session->lockerWindows(),
              (std::vector<FoundLocker>{{window, kBothMonitors, {190, 190}}}));

    client->unmap(window);
    EXPECT_EQ(takeSettled(), kHiddenAndUnlocked);
    EXPECT_FALSE(isLocked());
    client->map(window);
    EXPECT_EQ(takeSettled(), kLockedAndShown);
    client->destroy(window);
    EXPECT_EQ(takeSettled(), kHiddenAndUnlocked);

    standLocker();
    EXPECT_EQ(takeSettled(), kLockedAndShown);
    client->disconnect();
    EXPECT_TRUE(waitForNotices(2));
    EXPECT_EQ(take(), kHiddenAndUnlocked);
    EXPECT_TRUE(session->lockerWindows().empty());
}

// For example a locker that has crashed and is restarted at once: the card inside the first one's
// window is gone too.
TEST_F(LockerWindows, ThatAreReplacedAtOnceAreALockOfTheirOwn) {
    watch();
    const xcb_window_t first = standLocker();
    EXPECT_EQ(takeSettled(), kLockedAndShown);
    Notices another = kHiddenAndUnlocked;
    another.insert(another.end(), kLockedAndShown.begin(), kLockedAndShown.end());
    client->destroy(first);
    const xcb_window_t second = standLocker();
    EXPECT_EQ(takeSettled(), another);
    client->destroy(second);
    // The server reuses the window numbers of a client that has gone.
    standLocker(kBothMonitors, "i3lock", second);
    EXPECT_EQ(takeSettled(), another);
    standLocker();
    client->destroy(second);
    EXPECT_EQ(takeSettled(), another) << "the new one may come before the old one goes";
}

TEST_F(LockerWindows, AreFoundWhenTheyStandAlready) {
    standLocker();
    client->sync();
    watch();
    EXPECT_TRUE(isLocked());
    EXPECT_EQ(session->lockerWindows().size(), 1u);
    // The lock is a state that is queried; the lock's UI is announced to late observers.
    EXPECT_EQ(takeSettled(), (Notices{"LockUIIsShown"}));
    client->disconnect();
    EXPECT_TRUE(waitForNotices(2));
    EXPECT_EQ(take(), kHiddenAndUnlocked);
}

TEST_F(LockerWindows, AreKnownByAClassThatIsSetLater) {
    watch();
    const xcb_window_t window = standLocker(kBothMonitors, "");
    const xcb_window_t small = standLocker({0, 0, 10, 10}, "");
    EXPECT_EQ(takeSettled(), Notices{});
    client->setClass(window, "i3lock", "i3lock");
    EXPECT_EQ(takeSettled(), kLockedAndShown);
    client->setClass(window, "another", "another");
    EXPECT_EQ(takeSettled(), kHiddenAndUnlocked);
    client->setClass(small, "i3lock", "i3lock");  // too small yet
    client->configure(small, kBothMonitors);
    EXPECT_EQ(takeSettled(), kLockedAndShown);
}

TEST_F(LockerWindows, OfAnUnknownClientNeedKeyboardAndPointer) {
    useTwoMonitors();
    watch();
    const xcb_window_t window = standLocker(kBothMonitors, "");
    EXPECT_EQ(takeSettled(), Notices{}) << "an overlay is not a locker";
    ASSERT_TRUE(client->grabKeyboard());
    EXPECT_EQ(takeSettled(), Notices{});
    X11Client another{server.display()};
    EXPECT_TRUE(another.grabPointer()) << "asking for it has not taken it";
    xcb_ungrab_pointer(another.connection(), XCB_CURRENT_TIME);
    another.sync();
    ASSERT_TRUE(client->grabPointer()) << "after the keyboard, which no event reports";
    EXPECT_TRUE(waitForNotices(2));
    EXPECT_EQ(take(), kLockedAndShown);
    client->ungrabKeyboard();
    EXPECT_EQ(takeSettled(), kHiddenAndUnlocked);

    client->unmap(window);
    ASSERT_TRUE(client->grabKeyboard());
    EXPECT_EQ(takeSettled(), Notices{}) << "the grab came before the window";
    client->map(window);
    EXPECT_EQ(takeSettled(), kLockedAndShown);
}

// The compositor's own window covers everything, and the desktop may grab any keys.
TEST_F(LockerWindows, AreNotTheDesktopsOwn) {
    watch();
    X11Client desktop{server.display()};
    ASSERT_TRUE(desktop.grabKeyboard() && desktop.grabPointer());
    const xcb_window_t output = desktop.makeWindow(kBothMonitors);
    xcb_set_selection_owner(desktop.connection(), output, desktop.atom("_NET_WM_CM_S0"),
                            XCB_CURRENT_TIME);
    desktop.map(output);
    desktop.sync();
    EXPECT_EQ(takeSettled(), Notices{});
}

TEST_F(LockerWindows, StayWhenAMonitorGrowsBeforeThem) {
    server.setMonitor("only", 800, 600, 0, 0, true);
    watch();
    const xcb_window_t window = standLocker({0, 0, 800, 600});
    EXPECT_EQ(takeSettled(), kLockedAndShown);
    server.deleteMonitor("only");
    ASSERT_TRUE(
        runUntil(loop(), [&] { return session->screens().list().front().frame == kBothMonitors; }));
    EXPECT_EQ(takeSettled(), Notices{});
    client->configure(window, kBothMonitors);
    EXPECT_EQ(takeSettled(), Notices{});
    EXPECT_EQ(session->lockerWindows().front().frame, kBothMonitors);
}

TEST_F(LockerWindows, OfXscreensaverCountOnlyWhileItSaysLocked) {
    watch();
    const auto say = [this](const char* status) {
        client->setRootNumber("_SCREENSAVER_STATUS", XCB_ATOM_INTEGER, client->atom(status));
    };
    ASSERT_TRUE(client->grabKeyboard() && client->grabPointer());
    say("BLANK");
    const xcb_window_t saver = client->makeWindow(kBothMonitors);
    const xcb_window_t fade = client->makeWindow(kBothMonitors);
    client->map(fade);
    EXPECT_EQ(takeSettled(), kLockedAndShown) << "the windows' owner is not known yet";
    client->setClass(saver, "xscreensaver", "XScreenSaver");
    EXPECT_EQ(takeSettled(), kHiddenAndUnlocked);
    client->map(saver);
    EXPECT_EQ(takeSettled(), Notices{}) << "blank, and its fade has no class";
    say("LOCK");
    EXPECT_EQ(takeSettled(), kLockedAndShown);
    ASSERT_EQ(session->lockerWindows().size(), 1u);
    EXPECT_EQ(session->lockerWindows().front().window, saver);
    // The process that guards the screen ends; the one that draws continues.
    client->ungrabKeyboard();
    EXPECT_EQ(takeSettled(), kHiddenAndUnlocked);
    // The root's properties, which other clients change all the time, matter only during a lock.
    EXPECT_NE(rootMask() & XCB_EVENT_MASK_PROPERTY_CHANGE, 0u);
    client->destroy(saver);
    client->destroy(fade);
    settle();
    EXPECT_EQ(rootMask() & XCB_EVENT_MASK_PROPERTY_CHANGE, 0u);
}

TEST_F(LockerWindows, KeepTheAreasOfTheirPromptsClear) {
    useTwoMonitors();
    client->setResources("Xft.dpi: 96\n");
    client->sync();
    watch();
    int changes = 0;
    const Handle observation = session->screens().observeKeepClear([&] { ++changes; });
    const xcb_window_t window = client->makeWindow(kRightMonitor);
    client->setClass(window, "background", "xsecurelock");
    client->map(window);
    EXPECT_EQ(takeSettled(), kLockedAndShown);
    const Rect usual{1105, 355, 190, 190};
    EXPECT_EQ(zones(), std::vector<Rect>{usual});
    changes = 0;

    const xcb_window_t prompt = client->makeWindow({100, 400, 400, 100}, false, window);
    settle();
    EXPECT_EQ(zones(), std::vector<Rect>{usual}) << "not mapped yet";
    client->map(prompt);
    settle();
    const std::vector<Rect> wide{{900, 355, 600, 190}};
    EXPECT_EQ(zones(), wide);
    client->configure(prompt, {110, 380, 400, 100});
    settle();
    EXPECT_EQ(zones(), wide);
    EXPECT_EQ(changes, 1);
    const xcb_window_t dialog = client->makeWindow({10, 20, 200, 100});
    client->map(dialog);
    settle();
    EXPECT_EQ(zones(), (std::vector<Rect>{{10, 780, 200, 100}, wide.front()}));
    client->destroy(prompt);
    client->destroy(dialog);
    settle();
    EXPECT_EQ(zones(), wide) << "its place is kept for the next prompt";
    changes = 0;
    client->destroy(window);
    settle();
    EXPECT_EQ(zones(), std::vector<Rect>{});
    EXPECT_EQ(changes, 0) << "no card is left to move";
}

// Windows of a locker that has one per monitor.
TEST_F(LockerWindows, ThatReachAMonitorLaterOrAreReplacedAreReportedOnce) {
    useTwoMonitors();
    watch();
    const xcb_window_t left = standLocker(kLeftMonitor);
    const xcb_window_t right = standLocker(kRightMonitor);
    settle();
    int changes = 0;
    const Handle observation = session->screens().observeChanges([&] { ++changes; });
    client->destroy(right);
    settle();
    standLocker(kRightMonitor, "i3lock", right);
    settle();
    EXPECT_EQ(changes, 0);
    ASSERT_TRUE(runUntil(loop(), [&] { return changes > 0; }));

    // The locker's windows may change before or after the monitors; one report covers both.
    changes = 0;
    client->destroy(right);
    server.deleteMonitor("right");
    server.setMonitor("near", 400, 900, 800, 0);
    server.setMonitor("far", 400, 900, 1200, 0);
    settle();
    EXPECT_EQ(session->screens().list().size(), 2u);
    client->configure(left, kBothMonitors);
    client->sync();
    ASSERT_TRUE(runUntil(loop(), [&] { return changes > 0; }));
    EXPECT_EQ(session->screens().list().size(), 3u);
    EXPECT_EQ(zones().size(), 3u) << "they are right when the change is reported";
    server.deleteMonitor("far");
    ASSERT_TRUE(runUntil(loop(), [&] { return changes > 1; }));
    EXPECT_EQ(changes, 2);
}

TEST_F(LockerWindows, AreNotMistakenForOurs) {
    watch();
    const xcb_window_t window = standLocker(kBothMonitors, "XLock");
    settle();
    const auto before = zones();
    xcb_connection_t* own = session->connection();
    const xcb_window_t card = xcb_generate_id(own);
    xcb_create_window(own, XCB_COPY_FROM_PARENT, card, window, 20, 20, 200, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(own, card);
    settle();
    EXPECT_EQ(zones(), before);
}

TEST_F(LockerWindows, AreWatchedWithoutAnyKeyOrGrab) {
    watch();
    standLocker();
    const Handle pointer = session->observePointer([](const RawPointerEvent&) {});
    settle();
    EXPECT_EQ(rootMask() & (XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE |
                            XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT),
              0u);
    EXPECT_EQ(rawMask(), kRawPresses);
    // Both are free for others.
    EXPECT_TRUE(client->grabKeyboard());
    EXPECT_TRUE(client->grabPointer());
}

TEST_F(LockerWindows, OfARealXsecurelockStandInTheOverlayAndKeepItsPromptClear) {
    client->setResources("Xft.dpi: 96\n");
    client->sync();
    watch();
    // Its warnings on a machine without accounts and logins do not matter.
    ChildProcess locker{{"sh", "-c", "exec xsecurelock >/dev/null 2>&1"},
                        {server.environment(), "XSECURELOCK_SAVER=saver_blank"}};
    ASSERT_TRUE(waitForNotices(2));
    EXPECT_EQ(take(), kLockedAndShown);
    EXPECT_EQ(session->lockerWindows().front().frame, kBothMonitors);
    const std::vector<Rect> usual{{705, 355, 190, 190}};
    EXPECT_EQ(zones(), usual);
    // It opens its prompt once it holds the keyboard.
    constexpr unsigned kKeyA = 38;
    ASSERT_TRUE(runUntil(loop(), [&] { return client->type(kKeyA), zones() != usual; }));
    EXPECT_LT(zones().front().width, 1600);
    EXPECT_EQ(zones().front().height, 190) << "no card has to move";

    // Its window is inside the server's overlay, which is not listed, but the watcher finds it.
    stopWatching();
    watch();
    EXPECT_TRUE(isLocked());
    EXPECT_EQ(session->lockerWindows().size(), 1u);
    EXPECT_FALSE(zones().empty());
    locker.end(SIGKILL);
    EXPECT_TRUE(waitForNotices(3));
    EXPECT_EQ(take(), (Notices{"LockUIIsShown", "LockUIIsHidden", "IsUnlocked"}));
}

// The stack is tracked by events alone; after any history it must equal the server's list.
TEST_F(LockerWindows, AreStackedAsTheServerSays) {
    watch();
    auto x11 = X11Connection::open(loop(), server.display(), [] {});
    ASSERT_TRUE(x11);
    TopLevelWindows topLevels{**x11, [] {}};
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::minstd_rand random{seed};
    const auto pick = [&](std::size_t count) { return random() % count; };
    std::vector<xcb_window_t> made;
    for (int step = 0; step < 400; ++step) {
        const Rect frame{double(pick(500)), double(pick(500)), double(1 + pick(900)),
                         double(1 + pick(900))};
        const std::size_t action = pick(8);
        if (action < 2 || made.empty()) {
            made.push_back(client->makeWindow(frame, pick(2) == 0));
            continue;
        }
        const std::size_t index = pick(made.size());
        const xcb_window_t window = made[index];
        switch (action) {
            case 2: client->map(window); break;
            case 3: client->unmap(window); break;
            case 4: client->configure(window, frame); break;
            case 5: client->restack(window, std::uint32_t(pick(5))); break;
            case 6:
                xcb_circulate_window(client->connection(), std::uint8_t(pick(2)), client->root());
                break;
            case 7:
                if (pick(2) == 0) {
                    xcb_reparent_window(client->connection(), window, made[pick(made.size())], 3,
                                        4);
                    if (pick(3) == 0) break;  // it stays there
                    xcb_reparent_window(client->connection(), window, client->root(), 5, 6);
                    break;
                }
                client->destroy(window);
                made.erase(made.begin() + std::ptrdiff_t(index));
                break;
        }
    }
    settle();
    xcbReply(xcb_get_input_focus_reply, (*x11)->connection(),
             xcb_get_input_focus((*x11)->connection()));
    runOnce(loop());
    std::vector<xcb_window_t> listed = client->children(client->root());
    std::ranges::reverse(listed);
    const auto& followed = topLevels.windows();
    ASSERT_EQ(followed.size(), listed.size());
    for (std::size_t place = 0; place < listed.size(); ++place) {
        const auto& entry = followed[place];
        ASSERT_EQ(entry.window, listed[place]) << "at place " << place;
        EXPECT_EQ(entry.frame, client->frame(entry.window));
        const auto attributes = client->attributes(entry.window);
        EXPECT_EQ(entry.isMapped, attributes->map_state != XCB_MAP_STATE_UNMAPPED);
        EXPECT_EQ(entry.isOverrideRedirect, attributes->override_redirect != 0);
    }
}

}  // namespace
}  // namespace quorvane

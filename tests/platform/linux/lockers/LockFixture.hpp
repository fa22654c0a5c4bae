// A private X server, the tested session on it, and the lock watcher's notices.
#pragma once

#include <gtest/gtest.h>
#include <xcb/xinput.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/linux/services/LockWatcherLinux.hpp"
#include "platform/linux/x11/X11SessionLinux.hpp"
#include "tests/support/LoopRunner.hpp"
#include "tests/support/PrivateXServer.hpp"
#include "tests/support/RecordingLog.hpp"
#include "tests/support/X11Client.hpp"

namespace quorvane {

inline constexpr Rect kLeftMonitor{0, 0, 800, 900};
inline constexpr Rect kRightMonitor{800, 0, 800, 900};
inline constexpr Rect kBothMonitors{0, 0, 1600, 900};
inline constexpr unsigned kRawPresses =
    XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE |
    XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_BEGIN | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_END;

class LockFixture : public testing::Test {
protected:
    explicit LockFixture(const std::string& geometry = "1600x900x24") : server{geometry} {
        // Neither bus is there, as in a bare session.
        setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
        setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent", 1);
        unsetenv("QUORVANE_SCALE");
    }

    void SetUp() override {
        ASSERT_NE(server.display(), "") << "Xvfb did not start";
        client = std::make_unique<X11Client>(server.display());
    }
    void TearDown() override { stopWatching(); }

    void useTwoMonitors() {
        server.setMonitor("left", 800, 900, 0, 0, true);
        server.setMonitor("right", 800, 900, 800, 0);
    }
    void watch() {
        auto opened = X11SessionLinux::open(loop(), server.display(), [] {});
        ASSERT_TRUE(opened) << opened.error().description;
        session = *std::move(opened);
        watcher = std::make_unique<LockWatcherLinux>(services, session->detector());
        sources = watcher->sources();
        for (const char* name :
             {kScreenIsLocked, kScreenIsUnlocked, kScreenLockUIIsShown, kScreenLockUIIsHidden})
            observations.push_back(
                services.localNotices.observe(name, [this, name](const PropertyDictionary&) {
                    notices.push_back(name + std::string{"com.apple.screen"}.size());
                }));
        observations.push_back(sources.observeWake([] {}));
    }
    void stopWatching() {
        observations.clear();
        watcher.reset();
        session.reset();
    }

    // A mapped window of the test's client, of a known locker's class or of none.
    xcb_window_t standLocker(const Rect& frame = kBothMonitors, const char* name = "i3lock",
                             xcb_window_t number = XCB_WINDOW_NONE) {
        const xcb_window_t window = client->makeWindow(frame, true, XCB_WINDOW_NONE, number);
        if (*name) client->setClass(window, name, name);
        client->map(window);
        return window;
    }
    // The event mask that the session has selected on the root window.
    std::uint32_t rootMask() {
        xcb_connection_t* own = session->connection();
        const auto attributes = xcbReply(xcb_get_window_attributes_reply, own,
                                         xcb_get_window_attributes(own, session->screen().root));
        return attributes ? attributes->your_event_mask : 0;
    }
    // The raw events that it has selected.
    std::uint32_t rawMask() {
        xcb_connection_t* own = session->connection();
        const auto reply = xcbReply(xcb_input_xi_get_selected_events_reply, own,
                                    xcb_input_xi_get_selected_events(own, session->screen().root));
        auto masks = xcb_input_xi_get_selected_events_masks_iterator(reply.get());
        return masks.rem == 1 ? xcb_input_event_mask_mask(masks.data)[0] : 0;
    }

    EventLoop& loop() { return services.loop; }
    // Returns when the session has handled the other client's events, and the server the requests
    // that followed. The server serves its clients in no certain order.
    void settle() {
        client->sync();
        syncSession();
        runOnce(loop());
        syncSession();
    }
    void syncSession() {
        xcb_connection_t* own = session->connection();
        xcbReply(xcb_get_input_focus_reply, own, xcb_get_input_focus(own));
    }
    // The notices since the last call, without their common prefix.
    std::vector<std::string> take() { return std::exchange(notices, {}); }
    std::vector<std::string> takeSettled() {
        settle();
        return take();
    }
    bool waitForNotices(std::size_t count) {
        return runUntil(loop(), [&] { return notices.size() >= count; });
    }
    bool isLocked() {
        const auto root = sources.sessionDictionary();
        const auto* dictionary = root ? root->as<PropertyDictionary>() : nullptr;
        return dictionary && find<bool>(*dictionary, "CGSSessionScreenIsLocked");
    }
    std::vector<Rect> zones() {
        std::vector<Rect> all;
        for (const Screen& screen : session->screens().list())
            all.insert(all.end(), screen.keepClear.begin(), screen.keepClear.end());
        return all;
    }

    using Notices = std::vector<std::string>;
    const Notices kLockedAndShown{"IsLocked", "LockUIIsShown"};
    const Notices kHiddenAndUnlocked{"LockUIIsHidden", "IsUnlocked"};

    PrivateXServer server;
    RecordingLog log;
    std::unique_ptr<X11Client> client;
    HeadlessPlatform services{log.sink()};
    std::unique_ptr<X11SessionLinux> session;
    std::unique_ptr<LockWatcherLinux> watcher;
    LockSources sources;
    std::vector<Handle> observations;
    Notices notices;
};

}  // namespace quorvane

// Card windows on a private X server, inside the window of a locker that the test plays. Time and
// posted actions move only when the test says so; what the server has to tell comes in by `settle`.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "platform/linux/card/CardModule.hpp"
#include "platform/linux/lockers/X11SessionLinux.hpp"
#include "tests/support/LoopRunner.hpp"
#include "tests/support/ManualClock.hpp"
#include "tests/support/ManualMainThread.hpp"
#include "tests/support/PrivateXServer.hpp"
#include "tests/support/RecordingLog.hpp"
#include "tests/support/Screenshot.hpp"
#include "tests/support/X11Client.hpp"

extern "C" quorvane::CardWindows quorvaneMakeCardWindows(const quorvane::CardModuleServices&);

namespace quorvane {

inline constexpr Rect kWholeScreen{0, 0, 1000, 700};
inline constexpr CardStyle kCardStyle{{400, 222}, 52, 30, 1, 0.25, 22, 8};
// Pixels of a card window at (248, 100): the card begins at (300, 152).
inline constexpr int kWindowX = 248;
inline constexpr int kWindowY = 100;
inline constexpr std::uint32_t kLockerColor = 0xff336699;

class CardFixture : public testing::Test {
protected:
    explicit CardFixture(const std::vector<std::string>& serverOptions = {})
        : server{"1000x700x24", serverOptions} {
        unsetenv("QUORVANE_SCALE");
    }

    void SetUp() override {
        ASSERT_NE(server.display(), "") << "Xvfb did not come up";
        locker = std::make_unique<X11Client>(server.display());
        viewer = std::make_unique<X11Client>(server.display());
    }
    void TearDown() override {
        window.reset();
        stage.reset();
        windows = {};
        session.reset();
    }

    // The session, and the locker's window that it finds, shown in one colour.
    void lock(std::uint32_t color = kLockerColor) {
        if (!session) open();
        ASSERT_TRUE(locker->grabKeyboard());
        lockerWindow = locker->makeWindow(kWholeScreen);
        locker->setClass(lockerWindow, "i3lock", "i3lock");
        setBackground(lockerWindow, color);
        locker->map(lockerWindow);
        settle();
        ASSERT_EQ(session->lockerWindows().size(), 1u);
    }
    void open() {
        auto opened = X11SessionLinux::open(loop, server.display(), [] {});
        ASSERT_TRUE(opened) << opened.error().description;
        session = *std::move(opened);
        windows = quorvaneMakeCardWindows({.x11 = *session,
                                           .clock = clock.clock(),
                                           .mainThread = mainThread.mainThread(),
                                           .log = log.sink()});
        settle();
    }
    void setBackground(xcb_window_t place, std::uint32_t color) {
        xcb_change_window_attributes(locker->connection(), place, XCB_CW_BACK_PIXEL, &color);
        xcb_clear_area(locker->connection(), false, place, 0, 0, 0, 0);
    }

    // Nothing on it is kept clear unless a test says so.
    Screen screen() {
        Screen first = session->screens().list().front();
        first.keepClear.clear();
        return first;
    }
    WindowSettings settings(int x = kWindowX, int y = kWindowY) {
        WindowSettings result;
        const Rect screenFrame = screen().frame;
        result.frame = {double(x), screenFrame.maxY() - y - 326, 504, 326};
        result.ignoresMouseEvents = false;
        return result;
    }
    void makeCard(int x = kWindowX, int y = kWindowY) {
        window = windows.makeWindow(settings(x, y), screen());
        ASSERT_TRUE(window) << "no window was made";
        stage = windows.makeStage(kCardStyle);
        window->setContent(stage);
        window->orderFrontRegardless();
    }
    void showLocked() {
        lock();
        makeCard();
        showCard();
    }
    // At once and without any animation.
    void showCard() {
        stage->setHidden(false);
        window->setAlpha(1);
        settle();
    }

    void advance(Duration duration) {
        mainThread.run();
        clock.advance(duration);
        mainThread.run();
    }
    // The server has done what every client asked for, and the session has heard of it.
    void settle() {
        for (int turn = 0; turn < 2; ++turn) {
            mainThread.run();
            if (locker->connection()) locker->sync();
            viewer->sync();
            std::free(xcb_get_input_focus_reply(
                session->connection(), xcb_get_input_focus(session->connection()), nullptr));
            runOnce(loop);
        }
        mainThread.run();
    }
    Screenshot look() {
        settle();
        return Screenshot::take(viewer->connection());
    }
    std::uint32_t pixelAt(int x, int y) {
        settle();
        return Screenshot::take(viewer->connection(), {double(x), double(y), 1, 1}).at(0, 0);
    }
    std::uint32_t pixelAt(Point at) { return pixelAt(int(at.x), int(at.y)); }
    xcb_window_t cardWindow() const { return static_cast<xcb_window_t>(window->number()); }
    // By another client, into the card's window: what is drawn again afterwards shows.
    void paintOver(std::uint32_t color) {
        fill(*viewer, cardWindow(), {0, 0, 504, 326}, color);
        viewer->sync();
    }
    static void fill(const X11Client& client, xcb_drawable_t target, const xcb_rectangle_t& area,
                     std::uint32_t color) {
        const xcb_gcontext_t context = xcb_generate_id(client.connection());
        xcb_create_gc(client.connection(), context, target, XCB_GC_FOREGROUND, &color);
        xcb_poly_fill_rectangle(client.connection(), target, context, 1, &area);
        xcb_free_gc(client.connection(), context);
    }

    static Scene sceneOf(std::vector<ShapeNode> shapes) {
        Scene scene;
        scene.nodes.assign(shapes.begin(), shapes.end());
        return scene;
    }

    PrivateXServer server;
    RecordingLog log;
    ManualClock clock;
    ManualMainThread mainThread;
    EventLoop loop;
    std::unique_ptr<X11Client> locker;
    std::unique_ptr<X11Client> viewer;
    std::unique_ptr<X11SessionLinux> session;
    CardWindows windows;
    std::shared_ptr<CardStage> stage;
    std::unique_ptr<CardSystemWindow> window;
    xcb_window_t lockerWindow = XCB_WINDOW_NONE;
};

}  // namespace quorvane

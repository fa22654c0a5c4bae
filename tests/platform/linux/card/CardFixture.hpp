// Card windows on a private X server, inside the window of a simulated locker. Only the test
// advances time and posted actions. `settle` handles the server's events.
#pragma once

#include "platform/linux/card/CardModule.hpp"
#include "tests/platform/linux/lockers/LockFixture.hpp"
#include "tests/support/ManualClock.hpp"
#include "tests/support/ManualMainThread.hpp"
#include "tests/support/Screenshot.hpp"

extern "C" quorvane::CardWindows quorvaneMakeCardWindows(const quorvane::CardModuleServices&,
                                                         void* session);

namespace quorvane {

inline constexpr Rect kWholeScreen{0, 0, 1000, 700};
inline constexpr CardStyle kCardStyle{{400, 222}, 52, 30, 1, 0.25, 22, 8};
// Pixels of a card window at (248, 100): the card begins at (300, 152).
inline constexpr int kWindowX = 248;
inline constexpr int kWindowY = 100;
inline constexpr std::uint32_t kLockerColor = 0xff336699;

class CardFixture : public LockFixture {
protected:
    CardFixture() : LockFixture("1000x700x24") {}
    void SetUp() override {
        LockFixture::SetUp();
        viewer = std::make_unique<X11Client>(server.display());
    }
    void TearDown() override {
        window.reset();
        stage.reset();
        windows = {};
        stopWatching();
    }

    // Locks the session with a locker window of one colour.
    void lock(std::uint32_t color = kLockerColor) {
        if (!session) open();
        ASSERT_TRUE(client->grabKeyboard());
        lockerWindow = standLocker(kWholeScreen);
        setBackground(lockerWindow, color);
        settle();
        ASSERT_EQ(session->lockerWindows().size(), 1u);
    }
    void open() {
        watch();
        X11Session& x11 = *session;
        windows = quorvaneMakeCardWindows(
            {.clock = clock.clock(), .mainThread = mainThread.mainThread(), .log = log.sink()},
            &x11);
        settle();
    }
    void setBackground(xcb_window_t place, std::uint32_t color) {
        xcb_change_window_attributes(client->connection(), place, XCB_CW_BACK_PIXEL, &color);
        xcb_clear_area(client->connection(), false, place, 0, 0, 0, 0);
    }

    // No area of it is kept clear unless a test sets one.
    Screen screen() {
        Screen first = session->screens().list().front();
        first.keepClear.clear();
        return first;
    }
    CardPlace place(int x = kWindowX, int y = kWindowY) {
        return {{double(x), screen().frame.maxY() - y - 326, 504, 326}};
    }
    void makeCard(int x = kWindowX, int y = kWindowY) {
        window = windows.makeWindow(place(x, y), screen());
        ASSERT_TRUE(window) << "no window was made";
        window->setIgnoresMouseEvents(false);
        stage = windows.makeStage(kCardStyle);
        window->setContent(stage);
        window->orderFrontRegardless();
    }
    void showLocked() {
        lock();
        makeCard();
        showCard();
    }
    // Without a delay or animation.
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
    // Returns when the server has executed all requests and the session has handled all events.
    void settle() {
        for (int turn = 0; turn < 2; ++turn) {
            mainThread.run();
            if (client->connection()) client->sync();
            viewer->sync();
            syncSession();
            runOnce(loop());
        }
        mainThread.run();
    }
    Pixels look(const Rect& area = kWholeScreen) {
        settle();
        return screenshot(viewer->connection(), area);
    }
    std::uint32_t pixelAt(int x, int y) { return look({double(x), double(y), 1, 1}).at(0, 0); }
    xcb_window_t cardWindow() const { return static_cast<xcb_window_t>(window->number()); }
    static void fill(const X11Client& painter, xcb_drawable_t target, const xcb_rectangle_t& area,
                     std::uint32_t color) {
        const xcb_gcontext_t context = xcb_generate_id(painter.connection());
        xcb_create_gc(painter.connection(), context, target, XCB_GC_FOREGROUND, &color);
        xcb_poly_fill_rectangle(painter.connection(), target, context, 1, &area);
        xcb_free_gc(painter.connection(), context);
    }
    static Scene sceneOf(std::vector<ShapeNode> shapes) {
        Scene scene;
        scene.nodes.assign(shapes.begin(), shapes.end());
        return scene;
    }

    ManualClock clock;
    ManualMainThread mainThread;
    std::unique_ptr<X11Client> viewer;
    CardWindows windows;
    std::shared_ptr<CardStage> stage;
    std::unique_ptr<CardSystemWindow> window;
    xcb_window_t lockerWindow = XCB_WINDOW_NONE;
};

}  // namespace quorvane

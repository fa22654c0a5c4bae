// The surfaces of the card as a compositor receives them from the real surface process.
#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <chrono>

#include "platform/linux/hyprland/HyprlandLocks.hpp"
#include "platform/linux/wayland/WaylandSessionLinux.hpp"
#include "platform/linux/wayland/card/CardWindowWayland.hpp"
#include "tests/platform/linux/wayland/TestCompositor.hpp"
#include "tests/support/LoopRunner.hpp"
#include "tests/support/RecordingLog.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

constexpr CardStyle kStyle{{400, 222}, 52, 30, 1, 0.25, 22, 8, 106};
constexpr TestCompositor::Output kPlain{.width = 1280, .height = 800, .logical = {0, 0, 1280, 800}};

class WaylandCard : public testing::Test {
protected:
    // The folder of the compositor's socket.
    struct RuntimeFolder : TemporaryFolder {
        RuntimeFolder() {
            setenv("XDG_RUNTIME_DIR", path().c_str(), 1);
            setenv("WAYLAND_DISPLAY", "wayland-test", 1);
        }
    };
    // Locked, with the screens known.
    void lock() {
        session.setLocked(true);
        ASSERT_TRUE(runUntil(loop, [&] { return !session.screens().list().empty(); }));
    }
    // A card at the top left of the first screen, shown and painted once.
    void showCard() {
        compositor->addOutput(kPlain);
        lock();
        if (!HasFatalFailure()) open();
    }
    void open() {
        const Screen screen = session.screens().list().front();
        window = std::make_unique<CardWindowWayland>(
            session, resources,
            CardPlace{{screen.frame.minX() + 10, screen.frame.maxY() - 326 - 20, 504, 326}}, screen,
            1);
        window->setIgnoresMouseEvents(false);
        stage->setEvents(
            {.pointer = [this](const PointerEvent& event) { presses.push_back(event); },
             .accessibility = nullptr});
        stage->setHidden(false);
        window->setContent(stage);
        window->setAlpha(1);
        window->orderFrontRegardless();
        ASSERT_TRUE(runUntil(loop, [&] {
            return !compositor->surfaces.empty() && !compositor->surface().shown.isEmpty();
        }));
    }
    bool until(const std::function<bool()>& condition) { return runUntil(loop, condition); }
    void settle(Duration time = std::chrono::milliseconds{150}) {
        runUntil(
            loop, [] { return false; }, time);
    }

    RuntimeFolder folder;
    EventLoop loop;
    RecordingLog log;
    std::optional<TestCompositor> compositor{std::in_place, loop};
    WaylandSessionLinux session{
        loop, SURFACE_PROGRAM, {.needsKdeOverlay = true}, Logger{log.sink(), "", "wayland"}};
    std::shared_ptr<CardResources> resources =
        CardResources::make({loop.clock(), loop.mainThread(), log.sink()});
    std::shared_ptr<CardStageLinux> stage = std::make_shared<CardStageLinux>(kStyle);
    std::vector<PointerEvent> presses;
    std::unique_ptr<CardWindowWayland> window;
};

TEST_F(WaylandCard, HasScreensOnlyDuringALock) {
    compositor->addOutput(
        {.width = 1920, .height = 1080, .wholeScale = 2, .logical = {0, 0, 1280, 720}});
    auto& second = compositor->addOutput(
        {.width = 1920, .height = 1080, .transform = 1, .logical = {1280, 0, 1080, 1920}});
    compositor->addOutput({.width = 1280, .height = 720, .logical = {0, 0, 1280, 720}});  // mirrors
    int changes = 0;
    const Handle observation = session.screens().observeChanges([&] { ++changes; });
    settle();
    EXPECT_EQ(compositor->clientCount(), 0) << "unlocked, nothing is connected";
    EXPECT_TRUE(session.screens().list().empty());
    lock();
    const auto screens = session.screens().list();
    ASSERT_EQ(screens.size(), 2u);
    EXPECT_EQ(screens[0].frame, (Rect{0, -720, 1280, 720}));
    EXPECT_EQ(screens[0].scale, 1.5) << "from the two sizes, not the whole scale of 2";
    EXPECT_EQ(screens[1].frame, (Rect{1280, -1920, 1080, 1920}));
    EXPECT_EQ(screens[1].scale, 1) << "rotated";
    EXPECT_EQ(changes, 1);
    compositor->remove(second);
    EXPECT_TRUE(until([&] { return session.screens().list().size() == 1; }));
    compositor->addOutput(kPlain);
    EXPECT_TRUE(until([&] { return session.screens().list().size() == 2; }));
    session.setLocked(false);
    EXPECT_TRUE(until([&] { return compositor->clientCount() == 0; }));
    EXPECT_TRUE(session.screens().list().empty());
}

TEST_F(WaylandCard, IsAnOverlayWithoutKeyboardThatTakesThePointerInItsShape) {
    showCard();
    EXPECT_TRUE(compositor->heard("zwlr_layer_shell_v1.get_layer_surface(, , , 3, quorvane-card)"));
    EXPECT_TRUE(compositor->heard("zwlr_layer_surface_v1.set_size(504, 326)"));
    EXPECT_TRUE(compositor->heard("zwlr_layer_surface_v1.set_margin(20, 0, 0, 10)"));
    EXPECT_TRUE(compositor->heard("zwlr_layer_surface_v1.set_keyboard_interactivity(0)"));
    EXPECT_FALSE(compositor->heard("wl_seat.get_keyboard"));
    const auto place = [&](const char* request) {
        return std::ranges::find_if(
                   compositor->requests,
                   [&](const std::string& each) { return each.starts_with(request); }) -
               compositor->requests.begin();
    };
    EXPECT_LT(place("kde_lockscreen_overlay_v1.allow"), place("wl_surface.attach"));
    ASSERT_TRUE(until([&] { return !compositor->surface().input.empty(); }));
    int area = 0;
    for (const PixelRect& part : compositor->surface().input) {
        EXPECT_TRUE((PixelRect{52, 52, 400, 222}).contains(part));
        area += part.width * part.height;
    }
    EXPECT_GT(area, 400 * 222 * 97 / 100);
    EXPECT_LT(area, 400 * 222) << "the corners are round";
    const Pixels& shown = compositor->surface().shown;
    EXPECT_EQ(shown.at(0, 0) >> 24, 0u);
    EXPECT_GT(shown.at(40, 160) >> 24, 10u) << "the shadow";
    EXPECT_LT(shown.at(40, 160) >> 24, 80u);
    EXPECT_NEAR(shown.at(252, 160) >> 24, 0.84 * 255, 1) << "the tint";
    window->setIgnoresMouseEvents(true);
    EXPECT_TRUE(until([&] { return compositor->surface().input.empty(); }));
}

TEST_F(WaylandCard, HasTheScreensPixelsAndTheLogicalSize) {
    compositor->addOutput(
        {.width = 1920, .height = 1080, .wholeScale = 2, .logical = {0, 0, 1280, 720}});
    lock();
    open();
    EXPECT_EQ(compositor->surface().shown.width, 756);
    EXPECT_EQ(compositor->surface().shown.height, 489);
    EXPECT_EQ(compositor->surface().destination, (PixelRect{0, 0, 504, 326}));
}

Scene sceneOf(double width) {
    Scene scene;
    scene.nodes.push_back(ShapeNode{.frame = {20, 20, width, 10}, .fill = Color::white()});
    scene.nextChange = std::chrono::milliseconds{30};  // as for a moving title: events may wait
    return scene;
}

TEST_F(WaylandCard, DrawsOnceAFrame) {
    showCard();
    settle();
    const int before = compositor->surface().commits;
    stage->setScene(sceneOf(10));
    settle();
    EXPECT_EQ(compositor->surface().commits, before) << "the last frame is not painted yet";
    stage->setScene(sceneOf(20));
    compositor->repaint();
    EXPECT_TRUE(until([&] { return compositor->surface().commits == before + 1; }));
    settle();
    EXPECT_EQ(compositor->surface().commits, before + 1);
    const Pixels& shown = compositor->surface().shown;
    EXPECT_NE(shown.at(52 + 35, 52 + 25), shown.at(52 + 45, 52 + 25)) << "both changes are drawn";
    for (int i = 1; i <= 4; ++i) {  // each picture also has the previous one's drawing
        compositor->repaint();
        settle(std::chrono::milliseconds{30});
        stage->setScene(sceneOf(20 + 20 * i));
        ASSERT_TRUE(until([&] { return compositor->surface().commits == before + 1 + i; }));
        EXPECT_EQ(compositor->surface().shown.at(52 + 22, 52 + 25),
                  compositor->surface().shown.at(52 + 20 + 20 * i + 15, 52 + 25));
    }
}

TEST_F(WaylandCard, IsMadeAgainWhenItIsCovered) {
    showCard();
    const int before = compositor->surface().commits;
    compositor->surface().isCovered = true;
    compositor->repaint();
    EXPECT_TRUE(until([&] { return compositor->surface().commits > before; })) << "unchanged";
    EXPECT_EQ(compositor->surfaces.size(), 1u);
    compositor->repaint();
    EXPECT_TRUE(until([&] { return compositor->surfaces.size() == 2; }));
    EXPECT_TRUE(until([&] { return !compositor->surface().shown.isEmpty(); }));
    EXPECT_EQ(compositor->surfaces.front().resource, nullptr);
}

TEST_F(WaylandCard, IsCoveredFromAChangeThatIsNotShownForASecondToTheNextFrame) {
    showCard();
    std::vector<bool> reports;
    window->setCoverObserver([&](bool isCovered) { reports.push_back(isCovered); });
    settle(std::chrono::milliseconds{1100});
    EXPECT_TRUE(reports.empty()) << "nothing has changed";
    stage->setScene(sceneOf(10));
    EXPECT_TRUE(until([&] { return reports == std::vector{true}; }));
    const int before = compositor->surface().commits;
    compositor->surface().isCovered = true;
    compositor->repaint();
    EXPECT_TRUE(until([&] { return compositor->surface().commits > before; }));
    EXPECT_EQ(reports, (std::vector{true, false}));
}

TEST_F(WaylandCard, IsPressedByPointerAndFinger) {
    showCard();
    using Kind = PointerEvent::Kind;
    const auto isNext = [&](Kind kind, Point place) {
        if (!until([&] { return !presses.empty(); })) return false;
        const PointerEvent event = presses.front();
        presses.erase(presses.begin());
        return event.kind == kind && event.location == place;
    };
    compositor->enter({152, 152});
    compositor->button(BTN_LEFT, true);
    EXPECT_TRUE(isNext(Kind::down, {100, 100}));
    compositor->move({162, 150.5});
    EXPECT_TRUE(isNext(Kind::dragged, {110, 98.5}));
    compositor->button(BTN_LEFT, false);
    EXPECT_TRUE(isNext(Kind::up, {110, 98.5}));
    compositor->button(BTN_RIGHT, true);
    compositor->button(BTN_RIGHT, false);
    compositor->move({10, 10});
    compositor->touchDown({72, 62});
    EXPECT_TRUE(isNext(Kind::down, {20, 10})) << "other buttons and hovering are not reported";
    compositor->touchUp();
    EXPECT_TRUE(isNext(Kind::up, {20, 10}));
    compositor->button(BTN_LEFT, true);
    EXPECT_TRUE(isNext(Kind::down, {20, 10}));
    window->orderOut();
    EXPECT_TRUE(isNext(Kind::cancelled, {20, 10}));
}

TEST_F(WaylandCard, IsGoneWhenItIsClosed) {
    showCard();
    compositor->closeLayers();
    EXPECT_TRUE(until([&] { return !window->isVisible(); }));
    EXPECT_TRUE(until([&] { return compositor->surface().resource == nullptr; }));
}

TEST_F(WaylandCard, IsGoneAtTheUnlock) {
    showCard();
    session.setLocked(false);
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(until([&] { return compositor->clientCount() == 0; }));
}

TEST_F(WaylandCard, OutlivesNeitherTheCompositorNorItsProcess) {
    showCard();
    compositor->end();
    EXPECT_TRUE(until([&] { return !window->isVisible(); }));
    EXPECT_TRUE(log.contains("wayland: the connection to the compositor has ended"));
    EXPECT_TRUE(session.screens().list().empty());
    // The session reconnects to a restarted compositor.
    compositor.emplace(loop);
    compositor->addOutput(kPlain);
    EXPECT_TRUE(until([&] { return session.screens().list().size() == 1; }));
    // The surface process connects, because compositors check which program a client is.
    ASSERT_NE(compositor->clientProcess(), getpid());
    kill(compositor->clientProcess(), SIGKILL);
    EXPECT_TRUE(until([&] { return compositor->clientCount() == 0; }));
}

TEST_F(WaylandCard, NeedsTheOverlayOfKde) {
    compositor.emplace(loop, false);
    compositor->addOutput(kPlain);
    session.setLocked(true);
    EXPECT_TRUE(until([&] { return !log.lines().empty(); }));
    EXPECT_TRUE(log.lines().front().text.ends_with("run: quorvane-host install"));
    EXPECT_TRUE(session.screens().list().empty());
    session.setLocked(false);
    compositor->requests.clear();
    session.setLocked(true);
    EXPECT_TRUE(until([&] { return compositor->heard("wl_display.sync"); }));
    compositor->offerKdeOverlay();  // too late for this connection
    EXPECT_TRUE(until([&] { return session.screens().list().size() == 1; }));
}

TEST_F(WaylandCard, IsToldByHyprlandOfTheLock) {
    HyprlandLocks locks{loop};
    int changes = 0;
    const Handle observation = locks.observe([&] { ++changes; });
    ASSERT_TRUE(until(
        [&] { return compositor->heard("hyprland_lock_notifier_v1.get_lock_notification"); }));
    for (const bool isLocked : {true, false, true}) {
        compositor->tellLocked(isLocked);
        EXPECT_TRUE(until([&] { return locks.isLocked() == isLocked; }));
    }
    compositor->end();
    EXPECT_TRUE(until([&] { return !locks.isLocked(); }));
    EXPECT_EQ(changes, 4);
}

TEST_F(WaylandCard, StaysAsLongAsTheProcessIsToldTo) {
    showCard();
    settle(kBeatLimit + kBeat);
    EXPECT_TRUE(window->isVisible());
}

TEST_F(WaylandCard, HasAProcessThatEndsUnlessItIsToldToStay) {
    const auto process = SurfaceProcess::start(SURFACE_PROGRAM);
    ASSERT_TRUE(process);
    ASSERT_TRUE(until([&] { return compositor->clientCount() == 1; }));
    (*process)->endAfter(std::chrono::milliseconds{100});
    (*process)->endAfter(Duration::zero());
    settle(std::chrono::milliseconds{300});
    EXPECT_EQ(compositor->clientCount(), 1) << "without a surface it may wait";
    (*process)->endAfter(std::chrono::milliseconds{100});
    EXPECT_TRUE(until([&] { return compositor->clientCount() == 0; }));
}

}  // namespace
}  // namespace quorvane

// Presses on a card while the locker holds the pointer, and the arrow for a hidden pointer.
#include "tests/platform/linux/card/CardFixture.hpp"

namespace quorvane {
namespace {

using Kind = PointerEvent::Kind;

// The card begins at (300, 152); a place is the middle of its pixel.
Point onCard(double x, double y) { return {x + 0.5, y + 0.5}; }

class CardPointer : public CardFixture {
protected:
    void showWithEvents() {
        lock();
        ASSERT_TRUE(client->grabPointer());
        showHere();
    }
    void showHere(int x = kWindowX, int y = kWindowY) {
        makeCard(x, y);
        stage->setEvents({.pointer =
                              [this](const PointerEvent& event) {
                                  events.push_back(event.kind);
                                  places.push_back(event.location);
                              },
                          .accessibility = {}});
        window->setMouseDownObserver([this](Point point) {
            if (events.empty()) observed.push_back(point);  // before the press is handled
        });
        showCard();
        moveTo(10, 10);
    }
    void moveTo(int x, int y) {
        viewer->movePointer(x, y);
        settle();
    }
    void press(unsigned button = 1) {
        viewer->button(button, true);
        settle();
    }
    void release(unsigned button = 1) {
        viewer->button(button, false);
        settle();
    }
    void clickAt(int x, int y) {
        moveTo(x, y);
        press();
        release();
    }
    // Lockers such as i3lock hide the pointer by a grab like this.
    void grabPointer(bool isHidden) {
        xcb_connection_t* connection = client->connection();
        const xcb_pixmap_t bits = xcb_generate_id(connection);
        xcb_create_pixmap(connection, 1, bits, client->root(), 8, 8);
        fill(*client, bits, {0, 0, 8, 8}, isHidden ? 0 : 1);
        const xcb_cursor_t cursor = xcb_generate_id(connection);
        xcb_create_cursor(connection, cursor, bits, bits, 0, 0, 0, 0, 0, 0, 0, 0);
        ASSERT_TRUE(client->grabPointer(cursor));
    }

    std::vector<Kind> events;
    std::vector<Point> places;
    std::vector<Point> observed;
};

TEST_F(CardPointer, APressIsFollowedFromItsBeginningToItsEnd) {
    showWithEvents();
    moveTo(400, 200);
    press();
    ASSERT_EQ(events, std::vector{Kind::down});
    EXPECT_EQ(places.back(), onCard(100, 48));
    EXPECT_EQ(observed, (std::vector<Point>{{152.5, 326 - 100.5}})) << "in the window, upward";

    moveTo(420, 210);
    moveTo(900, 650);
    EXPECT_EQ(events, (std::vector{Kind::down, Kind::dragged, Kind::dragged}));
    EXPECT_EQ(places.back(), onCard(600, 498)) << "outside too";
    release();
    EXPECT_EQ(events.back(), Kind::up);
    EXPECT_EQ(places.back(), onCard(600, 498));
    moveTo(400, 200);
    EXPECT_EQ(events.size(), 4u) << "a move without a press is not reported";
}

TEST_F(CardPointer, OnlyThePrimaryButtonInsideTheOutlineCounts) {
    showWithEvents();
    for (const auto& [x, y] : {std::pair{270, 200}, {303, 155}, {800, 600}}) clickAt(x, y);
    moveTo(400, 200);
    for (const unsigned button : {2u, 3u}) press(button), release(button);
    EXPECT_TRUE(events.empty() && observed.empty());
    clickAt(312, 164);  // just inside the corner's curve
    EXPECT_EQ(events, (std::vector{Kind::down, Kind::up}));
    // A window above the card keeps its clicks.
    client->map(client->makeWindow({380, 180, 60, 40}, true, lockerWindow));
    clickAt(400, 200);
    EXPECT_EQ(events.size(), 2u);
}

TEST_F(CardPointer, AnotherButtonOrTheEndOfTheCardCancels) {
    showWithEvents();
    moveTo(400, 200);
    press();
    press(3);
    EXPECT_EQ(events, (std::vector{Kind::down, Kind::cancelled}));
    release(3);
    moveTo(410, 200);
    release();
    EXPECT_EQ(events.size(), 2u) << "the press is over";

    press();
    window->setIgnoresMouseEvents(true);
    EXPECT_EQ(events.size(), 3u) << "no callback inside the call";
    settle();
    EXPECT_EQ(events.back(), Kind::cancelled);
    release();
    clickAt(400, 200);
    EXPECT_EQ(events.size(), 4u) << "clicks go through";

    window->setIgnoresMouseEvents(false);
    settle();
    press();
    EXPECT_EQ(events.back(), Kind::down);
    client->disconnect();
    ASSERT_TRUE(runUntil(loop(), [this] { return !window->isVisible(); }));
    mainThread.run();
    EXPECT_EQ(events.back(), Kind::cancelled);
}

TEST_F(CardPointer, PlacesArePointsAndPixelsSharpAtEveryScale) {
    setenv("QUORVANE_SCALE", "1.5", 1);
    lock();
    showHere(20, 30);
    EXPECT_EQ(viewer->frame(cardWindow()), (Rect{30, 45, 756, 489}));
    stage->setScene(sceneOf({{{100, 100, 20, 20}, 0, {0, 1, 0, 1}}}));
    const Pixels shot = look();
    EXPECT_EQ(std::ranges::count(shot.values, 0xff00ff00), 30 * 30);
    EXPECT_EQ(shot.at(30 + 228, 45 + 228), 0xff00ff00);
    clickAt(208, 223);
    EXPECT_EQ(places.at(0), (Point{(208.5 - 108) / 1.5, (223.5 - 123) / 1.5}));
}

TEST_F(CardPointer, ShowsAnArrowOnlyWhereTheLockerHidesIts) {
    constexpr std::uint32_t kBlack = 0xff000000;  // its body, below and right of its tip
    lock();
    grabPointer(true);
    showHere();
    const Pixels without = look();
    EXPECT_NE(without.at(502, 256), kBlack);
    moveTo(500, 250);
    EXPECT_EQ(pixelAt(502, 256), kBlack);
    moveTo(600, 300);
    EXPECT_EQ(pixelAt(602, 306), kBlack);
    EXPECT_EQ(pixelAt(502, 256), without.at(502, 256));
    moveTo(10, 10);
    EXPECT_EQ(look(), without);

    moveTo(600, 300);
    grabPointer(false);
    EXPECT_EQ(look(), without) << "the locker shows its own pointer, so the card draws no arrow";
    grabPointer(true);
    window->setFrame({248, 274 - 40, 504, 326}, screen());
    EXPECT_EQ(pixelAt(602, 306), kBlack) << "the card has moved, not the pointer";
    window->setFrame({248, 0, 504, 326}, screen());
    EXPECT_EQ(pixelAt(602, 306), kLockerColor);
}

}  // namespace
}  // namespace quorvane

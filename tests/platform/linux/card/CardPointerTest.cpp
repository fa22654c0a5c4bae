// Presses on a card while the locker holds the pointer, and the arrow where the locker hides it.
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
        ASSERT_TRUE(locker->grabPointer());
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
            observed.push_back(point);
            eventsAtObservation.push_back(events.size());
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
    // The grab that hides the pointer is what lockers such as i3lock make.
    void grabPointer(bool isHidden) {
        xcb_connection_t* connection = locker->connection();
        const xcb_pixmap_t bits = xcb_generate_id(connection);
        xcb_create_pixmap(connection, 1, bits, locker->root(), 8, 8);
        fill(*locker, bits, {0, 0, 8, 8}, isHidden ? 0 : 1);
        const xcb_cursor_t cursor = xcb_generate_id(connection);
        xcb_create_cursor(connection, cursor, bits, bits, 0, 0, 0, 0, 0, 0, 0, 0);
        ASSERT_TRUE(locker->grabPointer(cursor));
    }

    std::vector<Kind> events;
    std::vector<Point> places;
    std::vector<Point> observed;
    std::vector<std::size_t> eventsAtObservation;
};

TEST_F(CardPointer, APressIsFollowedFromItsBeginningToItsEnd) {
    showWithEvents();
    moveTo(400, 200);
    press();
    ASSERT_EQ(events, std::vector{Kind::down});
    EXPECT_EQ(places.back(), onCard(100, 48));
    ASSERT_EQ(observed.size(), 1u);
    EXPECT_EQ(observed.front(), (Point{152.5, 326 - 100.5})) << "in the window, from its bottom";
    EXPECT_EQ(eventsAtObservation.front(), 0u) << "before the press is handled";

    moveTo(420, 210);
    moveTo(900, 650);
    EXPECT_EQ(events, (std::vector{Kind::down, Kind::dragged, Kind::dragged}));
    EXPECT_EQ(places.back(), onCard(600, 498)) << "outside too";
    release();
    EXPECT_EQ(events.back(), Kind::up);
    EXPECT_EQ(places.back(), onCard(600, 498));
    events.clear();
    moveTo(400, 200);
    EXPECT_TRUE(events.empty()) << "moving alone says nothing";
}

TEST_F(CardPointer, OnlyThePrimaryButtonInsideTheOutlineCounts) {
    showWithEvents();
    clickAt(270, 200);  // the shadow
    clickAt(303, 155);  // a corner, outside its curve
    clickAt(800, 600);
    moveTo(400, 200);
    press(3);
    release(3);
    press(2);
    release(2);
    EXPECT_TRUE(events.empty());
    EXPECT_TRUE(observed.empty());
    clickAt(312, 164);  // just inside the curve
    EXPECT_EQ(events, (std::vector{Kind::down, Kind::up}));
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
    EXPECT_EQ(events.size(), 3u) << "nothing is heard inside the call";
    settle();
    EXPECT_EQ(events.back(), Kind::cancelled);
    release();
    clickAt(400, 200);
    EXPECT_EQ(events.size(), 4u) << "clicks go through";

    window->setIgnoresMouseEvents(false);
    settle();
    press();
    EXPECT_EQ(events.back(), Kind::down);
    locker->disconnect();
    ASSERT_TRUE(runUntil(loop, [this] { return !window->isVisible(); }));
    mainThread.run();
    EXPECT_EQ(events.back(), Kind::cancelled);
}

TEST_F(CardPointer, WhatStandsOverTheCardKeepsItsClicks) {
    showWithEvents();
    const xcb_window_t prompt = locker->makeWindow({380, 180, 60, 40}, {}, lockerWindow);
    locker->map(prompt);
    clickAt(400, 200);
    EXPECT_TRUE(events.empty());
    locker->unmap(prompt);
    clickAt(400, 200);
    EXPECT_EQ(events.size(), 2u);
}

TEST_F(CardPointer, PlacesArePointsAtEveryScale) {
    setenv("QUORVANE_SCALE", "2", 1);
    lock();
    unsetenv("QUORVANE_SCALE");
    showHere(-20, 0);
    clickAt(200, 300);
    ASSERT_FALSE(places.empty());
    // The window's top left is at (-40, 0), the card's at (64, 104).
    EXPECT_EQ(places.front(), (Point{(200.5 - 64) / 2, (300.5 - 104) / 2}));
}

TEST_F(CardPointer, ShowsAnArrowOnlyWhereTheLockerHidesIts) {
    lock();
    grabPointer(true);
    showHere();
    const Screenshot without = look();
    moveTo(500, 250);
    const Screenshot with = look();
    EXPECT_EQ(with.at(502, 256), 0xff000000) << "its body, below and right of its tip";
    EXPECT_NE(without.at(502, 256), 0xff000000);
    moveTo(600, 300);
    const Screenshot moved = look();
    EXPECT_EQ(moved.at(602, 306), 0xff000000);
    EXPECT_EQ(moved.at(502, 256), without.at(502, 256));
    moveTo(10, 10);
    EXPECT_EQ(look(), without);

    moveTo(600, 300);
    grabPointer(false);
    EXPECT_EQ(look(), without) << "the locker shows its own, over an arrow of ours";
    grabPointer(true);
    EXPECT_EQ(look().at(602, 306), 0xff000000);
    window->setFrame({248, 274 - 40, 504, 326}, screen());
    EXPECT_EQ(look().at(602, 306), 0xff000000) << "the card has moved, not the pointer";
    window->setFrame({248, 0, 504, 326}, screen());
    EXPECT_EQ(pixelAt(602, 306), kLockerColor);
}

}  // namespace
}  // namespace quorvane

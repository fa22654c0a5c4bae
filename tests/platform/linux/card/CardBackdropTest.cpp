// The picture around and through a card: the locker's own, also when it changes.
#include "tests/platform/linux/card/CardFixture.hpp"

namespace quorvane {
namespace {

using std::chrono::milliseconds;

class CardBackdrop : public CardFixture {
protected:
    // The locker shows a picture of many colours, by its background or by drawing over it.
    void showPicture(bool isBackground) {
        xcb_connection_t* connection = client->connection();
        const xcb_pixmap_t picture = xcb_generate_id(connection);
        xcb_create_pixmap(connection, 24, picture, lockerWindow, 1000, 700);
        for (int i = 0; i < 70; ++i)
            fill(*client, isBackground ? picture : lockerWindow,
                 {0, static_cast<std::int16_t>(i * 10), 1000, 10},
                 0x030201u * static_cast<std::uint32_t>(i));
        if (!isBackground) return;
        xcb_change_window_attributes(connection, lockerWindow, XCB_CW_BACK_PIXMAP, &picture);
        xcb_clear_area(connection, false, lockerWindow, 0, 0, 0, 0);
    }
    // Outside the shadow's reach, and inside it.
    std::uint32_t marginPixel() { return pixelAt(kWindowX + 1, kWindowY + 1); }
    std::uint32_t shadowPixel() { return pixelAt(500, 384); }
    // Outside the card's shadow the window looks like what is behind it.
    void expectMarginsLike(const Pixels& before, int windowX, int windowY) {
        const Pixels now = look();
        for (const auto& [x, y] : {std::pair{0, 0}, {503, 0}, {0, 325}, {503, 325}})
            EXPECT_EQ(now.at(windowX + x, windowY + y), before.at(windowX + x, windowY + y))
                << x << ", " << y;
    }
};

class CardBackdropOfEachKind : public CardBackdrop, public testing::WithParamInterface<bool> {};

TEST_P(CardBackdropOfEachKind, IsTheLockersPictureAlsoAfterMoving) {
    lock();
    showPicture(GetParam());
    const Pixels before = look();
    makeCard();
    showCard();
    expectMarginsLike(before, kWindowX, kWindowY);
    // To a place that overlaps the old one, and back.
    window->setFrame(place(200, 260).frame, screen());
    const bool isHidden = look().at(400, 400) == before.at(400, 400);
    EXPECT_EQ(isHidden, !GetParam()) << "until it has been painted behind the card";
    advance(milliseconds{150});
    expectMarginsLike(before, 200, 260);
    EXPECT_NE(look().at(400, 400), before.at(400, 400)) << "the card";
    // Lockers repaint like this when the server exposes an area again.
    showPicture(GetParam());
    settle();
    window->setFrame(place(kWindowX, kWindowY).frame, screen());
    settle();
    advance(milliseconds{150});
    expectMarginsLike(before, kWindowX, kWindowY);
}

INSTANTIATE_TEST_SUITE_P(AsBackground, CardBackdropOfEachKind, testing::Bool());

TEST_F(CardBackdrop, FollowsTheLockersBackgroundWhenItRests) {
    showLocked();
    const std::uint32_t glass = pixelAt(500, 250);
    EXPECT_NE(shadowPixel(), kLockerColor);
    setBackground(lockerWindow, 0xff902010);
    EXPECT_EQ(marginPixel(), 0xff902010) << "the margin changes at once";
    EXPECT_EQ(shadowPixel(), 0xff902010);
    EXPECT_EQ(pixelAt(500, 250), glass);
    advance(milliseconds{100});
    EXPECT_EQ(marginPixel(), 0xff902010);
    EXPECT_NE(shadowPixel(), 0xff902010);
    EXPECT_NE(pixelAt(500, 250), glass);

    // The card's own drawing is not part of the locker's.
    for (int i = 0; i < 5; ++i) {
        advance(milliseconds{500});
        stage->setScene(sceneOf({{{20.0 * i, 20, 30, 30}, 0, Color::white()}}));
        settle();
    }
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

// Lockers replace a background in steps that the screen does not show: a fill, then the picture.
TEST_F(CardBackdrop, IsNeverAPictureInTheMaking) {
    lock();
    xcb_connection_t* connection = client->connection();
    showPicture(true);
    const Pixels picture = look();
    makeCard();
    showCard();
    const Pixels before = look();
    for (int key = 0; key < 3; ++key) {
        xcb_clear_area(connection, false, lockerWindow, 0, 0, 0, 0);
        const std::uint32_t filled = 0xffa3a3a3;
        xcb_change_window_attributes(connection, lockerWindow, XCB_CW_BACK_PIXEL, &filled);
        settle();
        advance(milliseconds{100});
        EXPECT_EQ(look(), before) << key;
        showPicture(true);
        settle();
        advance(milliseconds{100});
        EXPECT_EQ(look(), before) << key;
    }
    // The same holds for a temporary drawing that is not part of the background.
    const std::uint32_t white = 0xffffffff;
    fill(*client, lockerWindow, {0, 0, 1000, 700}, white);
    EXPECT_EQ(pixelAt(kWindowX - 1, kWindowY), white);
    advance(milliseconds{500});
    expectMarginsLike(picture, kWindowX, kWindowY);
    EXPECT_EQ(shadowPixel(), picture.at(500, 384));
}

TEST_F(CardBackdrop, IsReadOnAllOfARootThatHasGrown) {
    server.resizeRoot("500x700", "150x200");
    open();
    server.resizeRoot("1000x700", "300x200");
    settle();
    lock();
    makeCard(490, kWindowY);
    showCard();
    const std::uint32_t glass = pixelAt(742, 250);
    EXPECT_GT(glass & 0xff, (glass >> 16 & 0xff) + 20) << "blue, not black";
}

TEST_F(CardBackdrop, OfALockerWithoutBackgroundIsNotTakenFromTheCardItself) {
    lock();
    const std::uint32_t none = XCB_BACK_PIXMAP_NONE;
    xcb_change_window_attributes(client->connection(), lockerWindow, XCB_CW_BACK_PIXMAP, &none);
    showPicture(false);
    const Pixels before = look();
    makeCard();
    showCard();
    const Pixels shown = look();
    advance(milliseconds{600});
    showPicture(false);
    settle();
    advance(milliseconds{600});
    EXPECT_EQ(look(), shown);
    for (int y = 0; y < shown.height; ++y)
        for (int x = 0; x < shown.width; x += x == 299 && y >= 152 && y < 374 ? 401 : 1)
            ASSERT_EQ(shown.at(x, y), before.at(x, y)) << x << ", " << y;
    EXPECT_EQ(shown.at(302, 154), before.at(302, 154)) << "outside the round corner";
    EXPECT_NE(shown.at(302, 260), before.at(302, 260));
}

TEST_F(CardBackdrop, OutsideOfTheScreenDoesNoHarm) {
    lock();
    makeCard(700, -80);
    showCard();
    EXPECT_EQ(pixelAt(705, 240), kLockerColor);
    EXPECT_NE(pixelAt(900, 100), kLockerColor);
    window->setFrame(place(2000, 2000).frame, screen());
    EXPECT_EQ(pixelAt(900, 100), kLockerColor);
}

// The same card on servers without the extensions that make it fast or let it follow changes.
class CardWithout : public CardBackdrop, public testing::WithParamInterface<const char*> {
protected:
    CardWithout() { server = PrivateXServer{"1000x700x24", {"-extension", GetParam()}}; }
};

TEST_P(CardWithout, IsDrawnAllTheSame) {
    lock();
    showPicture(true);
    const Pixels before = look();
    makeCard();
    stage->setScene(sceneOf({{{100, 100, 20, 20}, 0, {0, 1, 0, 1}}}));
    showCard();
    EXPECT_EQ(std::ranges::count(look().values, 0xff00ff00), 20 * 20);
    expectMarginsLike(before, kWindowX, kWindowY);
    window->setFrame(place(200, 260).frame, screen());
    expectMarginsLike(before, 200, 260);
    window->close();
    EXPECT_EQ(look(), before);
}

INSTANTIATE_TEST_SUITE_P(Extension, CardWithout,
                         testing::Values("MIT-SHM", "Composite", "DAMAGE", "XFIXES", "SHAPE"));

}  // namespace
}  // namespace quorvane

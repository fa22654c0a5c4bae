// Cards inside the windows of real lockers.
#include "platform/linux/XcbReply.hpp"
#include "tests/platform/linux/CardFixture.hpp"
#include "tests/support/ChildProcess.hpp"
#include "tests/support/ProcessTree.hpp"

namespace quorvane {
namespace {

class CardInRealLocker : public CardFixture {
protected:
    void TearDown() override {
        // xsecurelock's helpers would outlive it.
        const auto helpers = descendantsOf(process.pid());
        process.end(SIGKILL);
        killAll(helpers);
        CardFixture::TearDown();
    }
    void start(std::vector<std::string> arguments, const std::vector<std::string>& more = {}) {
        open();
        std::vector<std::string> environment{server.environment()};
        environment.insert(environment.end(), more.begin(), more.end());
        process = ChildProcess{std::move(arguments), environment};
        ASSERT_TRUE(runUntil(loop, [this] { return !session->lockerWindows().empty(); }));
        lockerWindow = session->lockerWindows().front().window;
    }
    // Works on every frame of an entrance, with whatever the locker does meanwhile.
    void enter() {
        stage->setHidden(false);
        stage->springFrom({0.94, {252, 163}, {0, 12}}, {0.5, 0.05});
        window->animateAlpha(1, std::chrono::milliseconds{350}, [] {});
        for (int frame = 0; frame < 60; ++frame) advance(std::chrono::milliseconds{17});
        settle();
    }

    ChildProcess process;
};

TEST_F(CardInRealLocker, StandsInI3lockAndDiesWithIt) {
    start({"i3lock", "-n", "-c", "336699"});
    makeCard();
    enter();
    EXPECT_NE(pixelAt(500, 250), kLockerColor);
    EXPECT_EQ(pixelAt(kWindowX + 1, kWindowY + 1), kLockerColor);
    std::vector<Point> pressed;
    stage->setEvents(
        {.pointer = [&](const PointerEvent& event) { pressed.push_back(event.location); },
         .accessibility = {}});
    viewer->movePointer(400, 200);
    viewer->button(1, true);
    viewer->button(1, false);
    viewer->sync();
    ASSERT_TRUE(runUntil(loop, [&] {
        mainThread.run();
        return pressed.size() == 2;
    }));
    EXPECT_EQ(pressed.front(), (Point{100.5, 48.5}));
    EXPECT_EQ(pixelAt(402, 206), 0xff000000) << "i3lock hides the pointer, so the card shows one";

    process.end(SIGKILL);
    ASSERT_TRUE(runUntil(loop, [this] { return !window->isVisible(); }));
    settle();
    EXPECT_FALSE(xcb_connection_has_error(session->connection()));
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(CardInRealLocker, StandsInXsecurelockUnderItsPrompt) {
    start({"xsecurelock"}, {"XSECURELOCK_SAVER=saver_blank", "XSECURELOCK_AUTH_TIMEOUT=30"});
    makeCard(248, 180);
    enter();
    EXPECT_NE(pixelAt(500, 250), 0xff000000) << "the card over the saver";
    // Opens the prompt in the middle of the screen, over the card's lower half.
    constexpr unsigned kLetterA = 38;
    viewer->key(kLetterA, true);
    viewer->key(kLetterA, false);
    viewer->sync();
    const auto zones = [this] { return session->screens().list().front().keepClear; };
    ASSERT_TRUE(runUntil(loop, [&] { return !zones().empty(); }));
    // Before it has found its size the prompt covers everything for a moment.
    EXPECT_TRUE(runUntil(loop, [&] {
        // Above the prompt, wherever that has wandered to.
        return pixelAt(500, 240) != 0xff000000;
    })) << "the card goes on";
    // From the bottom up: the saver, the card, the prompt.
    const auto tree = xcbReply(xcb_query_tree_reply, viewer->connection(),
                               xcb_query_tree(viewer->connection(), lockerWindow));
    ASSERT_TRUE(tree);
    ASSERT_EQ(xcb_query_tree_children_length(tree.get()), 3);
    EXPECT_EQ(xcb_query_tree_children(tree.get())[1], cardWindow());
}

}  // namespace
}  // namespace quorvane

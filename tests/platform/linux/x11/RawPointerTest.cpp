// The raw pointer while another client holds it, as lockers do.
#include "platform/linux/x11/RawPointer.hpp"

#include "tests/platform/linux/lockers/LockFixture.hpp"

namespace quorvane {
namespace {

class RawPointerEvents : public LockFixture {
protected:
    void SetUp() override {
        LockFixture::SetUp();
        watch();
        client->movePointer(10, 20);
        ASSERT_TRUE(client->grabPointer());
        ASSERT_TRUE(client->grabKeyboard());
    }
    Handle record() {
        return session->observePointer([this](const RawPointerEvent& event) {
            constexpr const char* kNames[] = {"down", "moved", "up"};
            seen.push_back(kNames[int(event.kind)] +
                           (event.button ? " " + std::to_string(event.button) : "") + " at " +
                           describe(event.position));
        });
    }
    void act(const std::function<void()>& action) {
        action();
        settle();
    }

    std::vector<std::string> seen;
};

TEST_F(RawPointerEvents, ArriveDuringAnothersGrab) {
    const Handle observation = record();
    settle();
    act([&] { client->movePointer(300, 400); });
    EXPECT_TRUE(seen.empty()) << "moves without a button are nobody's business";
    act([&] { client->button(1, true); });
    act([&] { client->movePointer(320, 410); });
    act([&] { client->button(1, false); });
    act([&] { client->movePointer(500, 500); });
    act([&] { client->button(3, true), client->button(3, false); });
    EXPECT_EQ(seen, (Lines{"down 1 at {300, 400}", "moved at {320, 410}", "up 1 at {320, 410}",
                           "down 3 at {500, 500}", "up 3 at {500, 500}"}));
}

TEST_F(RawPointerEvents, CountButtonsAsTheUsersHandDoes) {
    const Handle observation = record();
    settle();
    // Left-handed, and the fourth button switched off.
    const std::uint8_t map[] = {3, 2, 1, 0, 5, 6, 7, 8, 9, 10};
    std::free(xcb_set_pointer_mapping_reply(
        client->connection(), xcb_set_pointer_mapping(client->connection(), sizeof map, map),
        nullptr));
    act([&] {
        for (const unsigned button : {1u, 3u, 4u})
            client->button(button, true), client->button(button, false);
    });
    EXPECT_EQ(seen, (Lines{"down 3 at {10, 20}", "up 3 at {10, 20}", "down 1 at {10, 20}",
                           "up 1 at {10, 20}"}));
}

TEST_F(RawPointerEvents, AreSelectedOnlyAsFarAsTheyAreWanted) {
    constexpr std::uint32_t kButtons = kRawPresses;
    constexpr std::uint32_t kMotion =
        XCB_INPUT_XI_EVENT_MASK_RAW_MOTION | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_UPDATE;
    EXPECT_EQ(rawMask(), 0u);
    Handle first = record();
    Handle second = record();
    EXPECT_EQ(rawMask(), kButtons);
    act([&] { client->button(1, true); });
    EXPECT_EQ(rawMask(), kButtons | kMotion);
    act([&] { client->button(1, false); });
    EXPECT_EQ(rawMask(), kButtons);
    first.reset();
    EXPECT_EQ(rawMask(), kButtons);
    // Dropped in the middle of a press.
    act([&] { client->button(1, true); });
    second.reset();
    EXPECT_EQ(rawMask(), 0u);
    act([&] { client->button(1, false); });

    std::vector<Point> moves;
    Handle moving = session->observePointerMoves([&](Point place) { moves.push_back(place); });
    EXPECT_EQ(rawMask(), kMotion);
    act([&] {
        for (int x = 0; x < 200; ++x) client->movePointer(x, 50);
    });
    ASSERT_FALSE(moves.empty());
    EXPECT_EQ(moves.back(), (Point{199, 50}));
    EXPECT_LT(moves.size(), 200u) << "many moves at once are reported once";
    const Handle third = record();
    seen.clear();
    act([&] { client->movePointer(70, 80); });
    EXPECT_EQ(moves.back(), (Point{70, 80}));
    EXPECT_TRUE(seen.empty()) << "no button is down";
    moving.reset();
    EXPECT_EQ(rawMask(), kButtons);
}

TEST_F(RawPointerEvents, MayEndTheirOwnObservation) {
    Handle observation;
    int count = 0;
    observation = session->observePointer([&](const RawPointerEvent&) {
        ++count;
        observation.reset();
    });
    settle();
    act([&] { client->button(1, true), client->button(1, false); });
    EXPECT_EQ(count, 1);
}

}  // namespace
}  // namespace quorvane

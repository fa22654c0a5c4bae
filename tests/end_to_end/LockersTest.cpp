// The card over the distribution's lockers: it keeps clear of their prompts, and they receive all
// typed keys.

#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

constexpr unsigned kKeyA = 38;
constexpr unsigned kEscape = 9;

class EndToEndLockers : public EndToEndLock {
protected:
    // The locker's visible child windows that are smaller than the screen, without the card.
    std::vector<Rect> prompts() {
        std::vector<Rect> frames;
        for (const xcb_window_t window : probe.children(probe.parent(card.window)))
            if (const Rect frame = probe.frame(window);
                window != card.window && probe.isViewable(window) && frame.width < 1900)
                frames.push_back(frame);
        return frames;
    }
    bool isBesideThem() {
        const auto frames = prompts();
        // The shadow may lie over a prompt's edge; the card may not.
        const Rect visible = probe.frame(card.window).grownBy(-52);
        return !frames.empty() && std::ranges::none_of(frames, [&](const Rect& prompt) {
            return prompt.intersects(visible);
        });
    }
    std::vector<std::uint32_t> pixels(const Rect& area) {
        return screenshot(probe.connection(), area).values;
    }
};

TEST_F(EndToEndLockers, WhatIsTypedReachesI3lockWhileTheCardShows) {
    lock();
    const Rect ring{860, 440, 200, 200};
    EXPECT_FALSE(probe.frame(card.window).grownBy(-52).intersects(ring));
    const auto quiet = pixels(ring);
    ASSERT_FALSE(quiet.empty());
    probe.type(kKeyA);
    EXPECT_TRUE(eventually([&] { return pixels(ring) != quiet; }))
        << "i3lock draws its ring when it receives a key";
    constexpr std::uint32_t kKeys = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE;
    for (const xcb_window_t window : {card.window, probe.root()})
        EXPECT_EQ(probe.attributes(window)->all_event_masks & kKeys, 0U);
}

TEST_F(EndToEndLockers, TheCardStaysWhereItIsWhenXsecurelocksPromptOpensAndCloses) {
    setenv("XSECURELOCK_SAVER", "saver_blank", 1);
    setenv("XSECURELOCK_NO_COMPOSITE", "1", 1);
    lockWith(session.start({"xsecurelock"}));
    EXPECT_TRUE(LockSession::isDrawnOn(probe, card.frame));
    EXPECT_TRUE(prompts().empty());

    probe.type(kKeyA);
    ASSERT_TRUE(eventually([&] { return isBesideThem(); })) << addOn.log();
    EXPECT_EQ(probe.frame(card.window), card.frame);
    EXPECT_TRUE(LockSession::isDrawnOn(probe, card.frame));

    probe.type(kEscape);
    EXPECT_TRUE(eventually([&] { return prompts().empty(); })) << addOn.log();
    EXPECT_EQ(probe.frame(card.window), card.frame);
    EXPECT_EQ(addOn.count("entrance: window"), 1);

    locker.process().end(SIGTERM);
    EXPECT_TRUE(addOn.says("windows: closing 1 (state)"));
}

}  // namespace
}  // namespace quorvane

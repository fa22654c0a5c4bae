// The main application's place is taken by something that answers badly, or by somebody else's.

#include <gtest/gtest.h>

#include <fstream>

#include "tests/end_to_end/HostileHost.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kMegabyte = 1024 * 1024;
// A sanitized build needs longer for 16 megabytes than the add-on waits for them.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t kHugeMegabytes = 2;
#else
constexpr std::size_t kHugeMegabytes = 16;
#endif
constexpr std::size_t kHuge = kHugeMegabytes * kMegabyte;

class HostileHostTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(host.isServing()); }

    void showCard() {
        addOn = session.startAddOn();
        ASSERT_TRUE(host.answerWith(HostileHost::stateOf("First"))) << addOn.log();
        locker = session.startLocker();
        ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    }
    bool isRunning() { return !addOn.process().wait(0ms); }
    // Megabytes that the add-on holds in memory at present.
    std::size_t residentMegabytes() {
        std::ifstream status{"/proc/" + std::to_string(addOn.process().pid()) + "/status"};
        for (std::string word; status >> word;)
            if (std::size_t kilobytes = 0; word == "VmRSS:" && status >> kilobytes)
                return kilobytes / 1024;
        return 0;
    }

    LockSession session;
    HostileHost host{session};
    LoggedProcess addOn;
    LoggedProcess locker;
};

TEST_F(HostileHostTest, WhatIsNoStateLeavesTheLastOneStanding) {
    showCard();
    const std::string good = HostileHost::stateOf("Second");
    const auto replaced = [&](const std::string& what, const std::string& by) {
        std::string text = good;
        return text.replace(text.find(what), what.size(), by);
    };
    const std::vector<std::string> bad{
        "",
        "no state",
        "[]",
        "{}",
        good.substr(0, good.size() / 2),
        good.substr(0, good.size() - 1),
        good + "x",
        replaced("Second", "\xff\xfe"),
        replaced("Second", std::string(1, '\0')),
        replaced("\"playerState\":2", "\"playerState\":9"),
        replaced("\"Second\"", "null"),
        std::string(100'000, '['),
        replaced("\"Second\"", std::string(100'000, '[')),
        "{\"track\":{\"title\":\"" + std::string(kHuge, 'a'),
    };
    for (const std::string& reply : bad)
        ASSERT_TRUE(host.answerWith(reply)) << reply.substr(0, 200) << addOn.log();
    EXPECT_TRUE(isRunning());
    EXPECT_EQ(addOn.count("track changed"), 1) << addOn.log();
    EXPECT_EQ(addOn.count("exit: window"), 0);
    EXPECT_EQ(addOn.count("disconnected"), 0) << addOn.log();

    ASSERT_TRUE(host.answerWith(good));
    EXPECT_TRUE(addOn.says("state: now 'Second'")) << addOn.log();
}

TEST_F(HostileHostTest, HugeAnswersAreNotHoarded) {
    // The sanitizers' own hoard of what was freed is none of the add-on's.
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "most of a process's memory is the thread sanitizer's own";
#endif
    setenv("ASAN_OPTIONS", "quarantine_size_mb=1:allocator_release_to_os_interval_ms=0", 1);
    showCard();
    unsetenv("ASAN_OPTIONS");
    const std::size_t before = residentMegabytes();
    ASSERT_GT(before, 0U);
    std::size_t most = 0;
    for (int round = 0; round < 9; ++round) {
        // Artwork that is no picture, another one each time.
        ASSERT_TRUE(host.answerWith(
            HostileHost::stateOf("First", kHuge / 4 * 3 + static_cast<std::size_t>(round))))
            << addOn.log();
        ASSERT_TRUE(host.answerWith("{\"track\":{\"title\":\"" + std::string(kHuge, 'a')));
        most = std::max(most, residentMegabytes());
    }
    // At a time: the reply that brought the artwork, the artwork, and the reply being read; and
    // what the allocator has not given back yet. All of them together would be fifteen.
    EXPECT_LT(most, before + 8 * kHugeMegabytes) << "from " << before;
    EXPECT_EQ(addOn.count("B (undecodable)"), 9);

    ASSERT_TRUE(host.answerWith(HostileHost::stateOf("Second")));
    EXPECT_TRUE(addOn.says("state: now 'Second'"));
    EXPECT_LT(residentMegabytes(), before + 5 * kHugeMegabytes) << "from " << before;
}

TEST_F(HostileHostTest, SlowAnswersCountAsNoneAndTheCardReturnsWithQuickOnes) {
    showCard();
    ASSERT_TRUE(host.answerWith(HostileHost::stateOf("Second"), 1500ms));
    EXPECT_TRUE(addOn.says("Message port disconnected, status: -2")) << addOn.log();
    EXPECT_TRUE(addOn.says(
        "state: Quorvane unreachable; cleared (Quorvane unreachable or quit), card hidden"));
    EXPECT_EQ(addOn.count("state: now 'Second'"), 0) << "what comes too late is not taken";
    ASSERT_TRUE(host.answerWith(HostileHost::stateOf("Third")));
    EXPECT_TRUE(addOn.says("card: fading in on 1 window(s)")) << addOn.log();
    EXPECT_TRUE(addOn.says("state: now 'Third'"));
}

TEST(EndToEndHost, AHostWithAnotherSecretShowsNoCardUntilTheyAgree) {
    LockSession session;
    LoggedProcess host = session.startHost();
    const std::string file = "data/" + std::string{kAppGroup} + "/ipc-secret";
    const std::string secret = session.folder().read(file);
    ASSERT_EQ(secret.size(), 32U);
    session.folder().write(file, std::string(32, 'x'));
    LoggedProcess addOn = session.startAddOn();
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(addOn.says("delay true")) << addOn.log();
    EXPECT_EQ(addOn.count("Connected to message port"), 1);
    EXPECT_EQ(addOn.count("State received"), 0);
    EXPECT_EQ(addOn.count("windows: building"), 0);

    session.folder().write(file, secret);
    session.start({HOST_PROGRAM, "disable"}).process().wait(20s);
    session.start({HOST_PROGRAM, "enable"}).process().wait(20s);
    EXPECT_TRUE(addOn.says("entrance: window")) << addOn.log();
}

}  // namespace
}  // namespace quorvane

// The main application's place is taken by something that answers badly, or by somebody else's.

#include "tests/end_to_end/HostileHost.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

// A sanitized build needs longer for 16 megabytes than the add-on waits for them.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t kHugeMegabytes = 2;
#else
constexpr std::size_t kHugeMegabytes = 16;
#endif
constexpr std::size_t kHuge = kHugeMegabytes * 1024 * 1024;

// What a process holds in memory at present.
std::size_t residentMegabytes(pid_t process) {
    std::ifstream status{"/proc/" + std::to_string(process) + "/status"};
    for (std::string word; status >> word;)
        if (std::size_t kilobytes = 0; word == "VmRSS:" && status >> kilobytes)
            return kilobytes / 1024;
    return 0;
}

TEST(HostileHostTest, HugeAnswersAreNotHoarded) {
    // The sanitizers' own hoard of what was freed is none of the add-on's.
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "most of a process's memory is the thread sanitizer's own";
#endif
    setenv("ASAN_OPTIONS", "quarantine_size_mb=1:allocator_release_to_os_interval_ms=0", 1);
    LockSession session;
    HostileHost host{session};
    ASSERT_TRUE(host.isServing());
    LoggedProcess addOn = session.startAddOn();
    unsetenv("ASAN_OPTIONS");
    ASSERT_TRUE(host.answerWith(HostileHost::stateOf("First"))) << addOn.log();
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    const auto resident = [&] { return residentMegabytes(addOn.process().pid()); };
    const std::size_t before = resident();
    ASSERT_GT(before, 0U);
    std::size_t most = 0;
    for (int round = 0; round < 9; ++round) {
        // Artwork that is no picture, another one each time.
        ASSERT_TRUE(host.answerWith(
            HostileHost::stateOf("First", kHuge / 4 * 3 + static_cast<std::size_t>(round))))
            << addOn.log();
        ASSERT_TRUE(host.answerWith("{\"track\":{\"title\":\"" + std::string(kHuge, 'a')));
        most = std::max(most, resident());
    }
    // At a time: the reply that brought the artwork, the artwork, and the reply being read; and
    // what the allocator has not given back yet. All of them together would be fifteen.
    EXPECT_LT(most, before + 8 * kHugeMegabytes) << "from " << before;
    EXPECT_EQ(addOn.count("B (undecodable)"), 9);
    EXPECT_EQ(addOn.count("exit: window"), 0) << "what is no state leaves the last one standing";

    ASSERT_TRUE(host.answerWith(HostileHost::stateOf("Second")));
    EXPECT_TRUE(addOn.says("state: now 'Second'"));
    EXPECT_LT(resident(), before + 5 * kHugeMegabytes) << "from " << before;
}

TEST(HostileHostTest, OneWithAnotherSecretShowsNoCardUntilTheyAgree) {
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

// Lock after lock in one session: what a lock takes, its end gives back.
//
// A few locks each time; QUORVANE_SOAK_SECONDS makes it a long run.
#include <gtest/gtest.h>

#include <iterator>

#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

// What the add-on holds of the system.
struct Holdings {
    std::ptrdiff_t descriptors = 0;
    std::ptrdiff_t threads = 0;
    std::size_t ownKilobytes = 0;

    static Holdings of(pid_t pid) {
        const fs::path folder = "/proc/" + std::to_string(pid);
        Holdings holdings;
        const auto count = [&](const char* name) {
            return std::distance(fs::directory_iterator{folder / name}, fs::directory_iterator{});
        };
        holdings.descriptors = count("fd");
        holdings.threads = count("task");
        std::ifstream status{folder / "status"};
        for (std::string word; status >> word;)
            if (word == "RssAnon:") status >> holdings.ownKilobytes;
        return holdings;
    }
};

void lockOnce(LockSession& session, LoggedProcess& addOn) {
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    locker.process().end(SIGKILL);
    ASSERT_TRUE(addOn.says("windows: closing 1 (state)")) << addOn.log();
    ASSERT_TRUE(addOn.says("windows false")) << addOn.log();
}

TEST(Soak, LockAfterLockTakesNoMore) {
    LockSession session;
    LoggedProcess host = session.startHost();
    LoggedProcess addOn = session.startAddOn();
    // The first ones load the drawing module and fill its caches.
    for (int lock = 0; lock < 3; ++lock) ASSERT_NO_FATAL_FAILURE(lockOnce(session, addOn));
    const Holdings before = Holdings::of(addOn.process().pid());

    const char* const seconds = std::getenv("QUORVANE_SOAK_SECONDS");
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::seconds{seconds ? std::atoi(seconds) : 5};
    int locks = 0;
    Holdings after;
    do {
        ASSERT_NO_FATAL_FAILURE(lockOnce(session, addOn));
        after = Holdings::of(addOn.process().pid());
        EXPECT_LE(after.descriptors, before.descriptors + 1);
        EXPECT_LE(after.threads, before.threads + 1);
        ++locks;
    } while (!testing::Test::HasFailure() && std::chrono::steady_clock::now() < end);
    std::printf("%d locks: %td to %td descriptors, %zu to %zu kB of its own\n", locks,
                before.descriptors, after.descriptors, before.ownKilobytes, after.ownKilobytes);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // they keep what was freed
    EXPECT_LE(after.ownKilobytes, before.ownKilobytes + 1024);
#endif
}

}  // namespace
}  // namespace quorvane

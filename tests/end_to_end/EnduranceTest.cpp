// One session locked again and again: with parts of it killed at random moments, and without.
//
// Short runs by default. QUORVANE_KILLS_SECONDS and QUORVANE_SOAK_SECONDS make long ones;
// QUORVANE_SEED repeats a run of kills.
#include <random>

#include "platform/linux/files/PropertyListLinux.hpp"
#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

unsigned fromEnvironment(const char* name, unsigned otherwise) {
    const char* const value = std::getenv(name);
    return value ? static_cast<unsigned>(std::stoul(value)) : otherwise;
}

class Endurance : public testing::Test {
protected:
    struct Part {
        const char* name;
        std::function<void()> kill;
        std::function<void()> bringBack;
    };

    // Repeats the round for so many seconds, at least once, or until it fails. Returns the count.
    int repeat(std::chrono::seconds length, const std::function<void(int)>& round) const {
        const auto end = std::chrono::steady_clock::now() + length;
        int count = 0;
        do round(count++);
        while (!HasFailure() && std::chrono::steady_clock::now() < end);
        return count;
    }

    void lock() { locker = session.startLocker(); }
    void unlock() {
        locker.process().end(SIGKILL);
        ASSERT_TRUE(eventually([this] { return isUnlocked(); })) << addOn.log();
    }
    void expectTheNextLockShowsTheCard() {
        unlock();
        while (addOn.says("entrance: window", 0ms)) {
        }
        lock();
        ASSERT_TRUE(addOn.says("entrance: window", 90s)) << addOn.log() << host.log();
    }
    // Each file holds its old or its new contents, never a part of them.
    void expectWholeFiles() const {
        int files = 0;
        for (const auto& entry : std::filesystem::directory_iterator{session.folder() / "config"}) {
            if (entry.path().extension() != ".plist") continue;
            const std::string contents =
                session.folder().read("config/" + entry.path().filename().string());
            EXPECT_TRUE(parsePropertyList(bytesOf(contents))) << entry.path();
            ++files;
        }
        EXPECT_GT(files, 0);
        const std::string secret = "data/group.example.quillon.Quorvane/ipc-secret";
        EXPECT_EQ(session.folder().read(secret).size(), 32u);
    }

    LockSession session;
    LoggedProcess host = session.startHost();
    LoggedProcess addOn = session.startAddOn();
    LoggedProcess locker;

    const std::vector<Part> parts = {
        {"the add-on", [this] { addOn.process().end(SIGKILL); },
         [this] { addOn = session.startAddOn(); }},
        {"the host", [this] { host.process().end(SIGKILL); },
         [this] { host = session.startHost(); }},
        {"the locker", [this] { locker.process().end(SIGKILL); }, [this] { lock(); }},
        {"the bus", [this] { session.bus().kill(); }, [this] { session.bus().start(); }},
        {"the X server", [this] { killXServer(); },
         [this] {
             session.replaceXServer();
             addOn = session.startAddOn();
             lock();
         }},
    };

private:
    // All its clients end with it; the add-on logs the reason and exits with a status.
    void killXServer() {
        session.x().process().end(SIGKILL);
        EXPECT_EQ(addOn.process().exitStatus(20s), 1) << addOn.log();
    }
    bool isUnlocked() const {
        const X11Client probe = session.probe();
        const auto shot = screenshot(probe.connection(), {0, 0, 1, 1});
        return shot.width > 0 && shot.at(0, 0) != 0xff336699;
    }
};

using Kills = Endurance;
using Soak = Endurance;

TEST_F(Kills, AreRecoveredFromWhateverTheyHitAndWhenever) {
    const unsigned seed = fromEnvironment("QUORVANE_SEED", std::random_device{}());
    std::mt19937 random{seed};
    const std::chrono::seconds length{fromEnvironment("QUORVANE_KILLS_SECONDS", 8)};
    const int kills = repeat(length, [&](int number) {
        const Part& part = parts[random() % parts.size()];
        const auto moment = std::chrono::milliseconds{random() % 2000};
        const auto pause = std::chrono::milliseconds{random() % 1000};
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", kill " << number << ": "
                                        << part.name << " after " << moment.count() << " ms");
        unlock();
        lock();
        poll(nullptr, 0, static_cast<int>(moment.count()));
        part.kill();
        poll(nullptr, 0, static_cast<int>(pause.count()));
        part.bringBack();
        expectTheNextLockShowsTheCard();
        expectWholeFiles();
    });
    std::printf("%d kills\n", kills);
}

TEST_F(Soak, EachLockReleasesWhatItTook) {
    const auto lockOnce = [this](int) {
        lock();
        ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
        locker.process().end(SIGKILL);
        ASSERT_TRUE(addOn.says("windows: closing 1 (state)")) << addOn.log();
        ASSERT_TRUE(addOn.says("windows false")) << addOn.log();
    };
    // The first locks load the card module and fill its caches.
    for (int i = 0; i < 3 && !HasFailure(); ++i) lockOnce(i);
    const Holdings before = Holdings::of(addOn.process().pid());
    Holdings after;
    const std::chrono::seconds length{fromEnvironment("QUORVANE_SOAK_SECONDS", 5)};
    const int locks = repeat(length, [&](int number) {
        lockOnce(number);
        after = Holdings::of(addOn.process().pid());
        EXPECT_LE(after.descriptors, before.descriptors + 1);
        EXPECT_LE(after.threads, before.threads + 1);
    });
    std::printf("%d locks: %td to %td descriptors, %zu to %zu kB of its own\n", locks,
                before.descriptors, after.descriptors, before.ownKilobytes, after.ownKilobytes);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // they keep freed memory
    EXPECT_LE(after.ownKilobytes, before.ownKilobytes + 1024);
#endif
}

}  // namespace
}  // namespace quorvane

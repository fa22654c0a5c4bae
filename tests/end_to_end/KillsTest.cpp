// Any part of a session is killed at any moment; what is left recovers when the part comes back.
//
// A short run each time; QUORVANE_KILLS_SECONDS makes it a long one, QUORVANE_SEED repeats one.
#include <gtest/gtest.h>

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

class Kills : public testing::Test {
protected:
    struct Part {
        const char* name;
        std::function<void()> kill;
        std::function<void()> bringBack;
    };

    Kills() {
        host_ = session_.startHost();
        addOn_ = session_.startAddOn();
    }

    void lock() { locker_ = session_.startLocker(); }
    void unlock() {
        locker_.process().end(SIGKILL);
        ASSERT_TRUE(eventually([this] { return isUnlocked(); })) << addOn_.log();
    }
    void expectTheNextLockShowsTheCard() {
        unlock();
        while (addOn_.says("entrance: window", 0ms)) {
        }
        lock();
        ASSERT_TRUE(addOn_.says("entrance: window", 90s)) << addOn_.log() << host_.log();
    }
    // Old or new contents, never half of them.
    void expectWholeFiles() {
        int files = 0;
        for (const auto& entry :
             std::filesystem::directory_iterator{session_.folder() / "config"}) {
            if (entry.path().extension() != ".plist") continue;
            const std::string contents =
                session_.folder().read("config/" + entry.path().filename().string());
            EXPECT_TRUE(parsePropertyList(bytesOf(contents))) << entry.path();
            ++files;
        }
        EXPECT_GT(files, 0);
        const std::string secret = "data/group.example.quillon.Quorvane/ipc-secret";
        EXPECT_EQ(session_.folder().read(secret).size(), 32u);
    }

    const std::vector<Part> parts_ = {
        {"the add-on", [this] { addOn_.process().end(SIGKILL); },
         [this] { addOn_ = session_.startAddOn(); }},
        {"the host", [this] { host_.process().end(SIGKILL); },
         [this] { host_ = session_.startHost(); }},
        {"the locker", [this] { locker_.process().end(SIGKILL); }, [this] { lock(); }},
        {"the bus", [this] { session_.bus().kill(); }, [this] { session_.bus().start(); }},
        {"the X server", [this] { killXServer(); },
         [this] {
             session_.replaceXServer();
             addOn_ = session_.startAddOn();
             lock();
         }},
    };

private:
    // Takes all its clients along: the add-on says why, and ends plainly.
    void killXServer() {
        session_.x().process().end(SIGKILL);
        EXPECT_EQ(addOn_.process().exitStatus(20s), 1) << addOn_.log();
    }
    bool isUnlocked() {
        const X11Client probe = session_.probe();
        const auto shot = Screenshot::take(probe.connection(), {0, 0, 1, 1});
        return shot.width > 0 && shot.at(0, 0) != 0xff336699;
    }

    LockSession session_;
    LoggedProcess host_;
    LoggedProcess addOn_;
    LoggedProcess locker_;
};

TEST_F(Kills, AreRecoveredFromWhateverTheyHitAndWhenever) {
    const unsigned seed = fromEnvironment("QUORVANE_SEED", std::random_device{}());
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::seconds{fromEnvironment("QUORVANE_KILLS_SECONDS", 8)};
    std::mt19937 random{seed};
    int kills = 0;
    for (; std::chrono::steady_clock::now() < end; ++kills) {
        const Part& part = parts_[random() % parts_.size()];
        const auto moment = std::chrono::milliseconds{random() % 2000};
        const auto pause = std::chrono::milliseconds{random() % 1000};
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", kill " << kills << ": "
                                        << part.name << " after " << moment.count() << " ms");
        unlock();
        lock();
        poll(nullptr, 0, static_cast<int>(moment.count()));
        part.kill();
        poll(nullptr, 0, static_cast<int>(pause.count()));
        part.bringBack();
        expectTheNextLockShowsTheCard();
        expectWholeFiles();
        if (HasFailure()) return;
    }
    RecordProperty("kills", kills);
    std::printf("%d kills\n", kills);
}

}  // namespace
}  // namespace quorvane

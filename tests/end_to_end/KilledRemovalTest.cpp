// A removal that is killed after each of its steps and finished by the next launch.

#include <gtest/gtest.h>

#include "AddOnKit/life/SelfRemoval.hpp"
#include "platform/LivePlatform.hpp"
#include "platform/linux/files/BundleLayout.hpp"
#include "platform/linux/processes/LoginItemLinux.hpp"
#include "tests/end_to_end/InstalledAddOn.hpp"
#include "tests/support/ForkedChild.hpp"

namespace quorvane {
namespace {

namespace fs = std::filesystem;

// Kills the process after its n-th call of a wrapped operation.
struct Killer {
    int lastCall = 0;
    int calls = 0;

    template <typename Result, typename... Parameters>
    void after(std::function<Result(Parameters...)>& operation) {
        operation = [this, whole = std::move(operation)](Parameters... parameters) -> Result {
            struct AtEnd {
                Killer& killer;
                ~AtEnd() {
                    if (++killer.calls == killer.lastCall) raise(SIGKILL);
                }
            } atEnd{*this};
            return whole(parameters...);
        };
    }
};

// Removes the installed add-on over the live tables and is killed after so many calls. Returns
// whether the removal has finished.
bool removeKilledAfter(int calls, const InstalledAddOn& life) {
    ForkedChild child{[&](const ForkedChild::Say&) {
        for (const std::string& entry : life.session.environment()) putenv(strdup(entry.c_str()));
        auto services = makeLiveServices(0, nullptr, InstalledAddOn::kIdentifier);
        ProcessInfo process = services->process;
        process.bundle = life.place();
        process.bundleProperties = propertiesOfBundle(life.place());
        Killer killer{calls};
        SelfRemoval removal{.defaults = services->standardDefaults,
                            .loginItem = makeLoginItem(life.loginItem().parent_path(), process),
                            .fileManager = services->installation.fileManager,
                            .bundle = life.place(),
                            .supportDirectory = life.support(),
                            .terminate = [] {},
                            .log = {}};
        killer.after(removal.defaults.set);
        killer.after(removal.defaults.removeDomain);
        killer.after(removal.defaults.synchronize);
        killer.after(removal.loginItem.status);
        killer.after(removal.loginItem.unregisterItem);
        killer.after(removal.fileManager.removeItem);
        killer.after(removal.fileManager.fileExists);
        removal.perform();
        return 0;
    }};
    const int status = child.wait();
    return WIFEXITED(status);
}

void expectNothingIsLeft(const InstalledAddOn& life) {
    EXPECT_FALSE(fs::exists(life.support()));
    EXPECT_FALSE(fs::exists(life.loginItem()));
    EXPECT_FALSE(fs::exists(life.folder() / life.preferences()));
}

TEST(EndToEndRemoval, KilledAfterAnyStepItIsFinishedByTheNextLaunch) {
    InstalledAddOn life;
    life.folder().write("data/neighbour/file", "kept");
    life.folder().write("config/neighbour.plist", "kept");
    life.folder().write("config/autostart/neighbour.desktop", "kept");
    bool hasEnded = false;
    int finishedByLaunch = 0;
    int finishedByHost = 0;
    for (int calls = 1; !hasEnded; ++calls) {
        ASSERT_EQ(life.host({"install"}).status, 0);
        ASSERT_EQ(life.host({"quit"}).status, 0);
        hasEnded = removeKilledAfter(calls, life);
        SCOPED_TRACE(calls);
        if (fs::exists(life.place())) {
            // Only a launch that runs needs a display.
            LoggedProcess launch = life.session.start({"env", calls == 1 ? "-uNONE" : "-uDISPLAY",
                                                       InstalledAddOn::programIn(life.place())});
            if (calls == 1) {  // not marked yet: it goes on as if nothing had been
                EXPECT_TRUE(launch.says("lock monitor started"));
                launch.process().end(SIGINT);
                EXPECT_EQ(life.host({"remove"}).status, 0);
            } else {
                EXPECT_TRUE(launch.says("launch: a removal is pending; finishing it"));
                EXPECT_TRUE(launch.says("removal: finished; quitting"));
                launch.process().wait(std::chrono::seconds{20});
                ++finishedByLaunch;
            }
        } else if (!hasEnded) {  // nothing can be launched any more; the settings may be left
            EXPECT_EQ(life.host({"remove"}).status, 0);
            ++finishedByHost;
        }
        expectNothingIsLeft(life);
    }
    EXPECT_EQ(finishedByLaunch, 4);
    EXPECT_EQ(finishedByHost, 4);
    for (const char* file :
         {"data/neighbour/file", "config/neighbour.plist", "config/autostart/neighbour.desktop"})
        EXPECT_EQ(life.folder().read(file), "kept") << file;
}

TEST(EndToEndRemoval, AKilledRemovalDoesNotRemoveTheNextInstall) {
    InstalledAddOn life;
    ASSERT_EQ(life.host({"install"}).status, 0);
    ASSERT_EQ(life.host({"quit"}).status, 0);
    ASSERT_FALSE(removeKilledAfter(6, life));
    ASSERT_FALSE(fs::exists(life.place()));
    ASSERT_NE(life.folder().read(life.preferences()).find("removalPending"), std::string::npos);
    ASSERT_EQ(life.host({"install"}).status, 0);
    ASSERT_EQ(life.host({"quit"}).status, 0);
    ASSERT_EQ(life.host({"launch"}).status, 0) << "as at the next login";
    EXPECT_TRUE(fs::exists(life.place()));
}

}  // namespace
}  // namespace quorvane

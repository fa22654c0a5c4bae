// The add-on's installation, launch, update and removal, with real processes and files.

#include "tests/end_to_end/InstalledAddOn.hpp"

namespace quorvane {
namespace {

namespace fs = std::filesystem;
using EndToEndLife = InstalledAddOn;

TEST_F(EndToEndLife, InstallStatusQuitAndRemoveWithTheHostAlone) {
    const auto hostSays = [this](const char* command, const std::string& words) {
        const std::string text = host({command}).text;
        EXPECT_NE(text.find(words), std::string::npos) << text;
    };
    hostSays("install", "no host is running");
    EXPECT_TRUE(fs::exists(loginItem()));
    hostSays("status", "Add-on:  running, version 1.0.0, not connected");
    LoggedProcess serving = session.startHost();
    ASSERT_TRUE(says("Configuration: enabled true, removal false"));
    hostSays("status", "Add-on:  running, version 1.0.0, connected");
    hostSays("quit", "The add-on has quit. It starts again at the next login.\n");
    EXPECT_EQ(host({"quit"}).status, 1);
    EXPECT_EQ(host({"launch"}).status, 0);

    // Removal while it runs, is connected and shows the card.
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(says("entrance: window"));
    hostSays("remove", "Removed the add-on, its login item and its settings.\n");
    EXPECT_TRUE(says("windows: closing 1"));
    EXPECT_TRUE(says("removal: finished; quitting"));
    expectNothingIsLeft();
}

TEST_F(EndToEndLife, AnUpdateWhileTheCardShowsBringsItBack) {
    LoggedProcess serving = session.startHost();
    ASSERT_EQ(host({"install"}).status, 0);
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(says("entrance: window"));
    const auto updated = host({"update", "--from", copyBundle("new/X.app", "1.10.0")});
    EXPECT_EQ(updated.text, "Updated 1.0.0 to version 1.10.0.\nThe add-on is running.\n");
    // Both copies write one log, so these lines appear in this order.
    EXPECT_TRUE(says("installer: quitting"));
    EXPECT_TRUE(says("windows: closing 1"));
    EXPECT_TRUE(says("launch: 1.10.0"));
    EXPECT_TRUE(says("entrance: window")) << folder().read("log");
    EXPECT_EQ(folder().read("log").find("launch: an older copy"), std::string::npos);
}

TEST_F(EndToEndLife, InstallsWithAwkwardFoldersAndFailsPlainly) {
    EXPECT_EQ(host({"install"}, {{"XDG_DATA_HOME", "relative"}}).status, 0);
    EXPECT_TRUE(fs::exists(folder() / "home/.local/share" / kIdentifier));
    EXPECT_EQ(run({"env", "-u", "HOME", HOST_PROGRAM, "install"}).status, 0);
    auto failed = host({"install"}, {{"XDG_DATA_HOME", "/proc/nowhere"}});
    EXPECT_EQ(failed.status, 1);
    EXPECT_TRUE(failed.text.starts_with("quorvane-host: nothing was installed: ")) << failed.text;

    // A file cannot be written: fails, or is killed while copying. The old bundle stays.
    const auto bundle = copyBundle("new/X.app", "2.0.0");
    for (const bool isKilled : {false, true}) {
        failed = run(
            {"sh", "-c",
             isKilled ? "ulimit -f 100; exec \"$@\"" : "trap '' XFSZ; ulimit -f 100; exec \"$@\"",
             "sh", HOST_PROGRAM, "update", "--from", bundle});
        EXPECT_EQ(failed.status, isKilled ? -1 : 1);
        EXPECT_EQ(failed.text.find("File too large") == std::string::npos, isKilled);
    }
    EXPECT_NE(host({"status"}).text.find("Install: version 1.0.0"), std::string::npos);
    EXPECT_EQ(host({"install"}).status, 0);
    EXPECT_EQ(std::distance(fs::directory_iterator{support()}, {}), 1) << "the copy is discarded";
}

}  // namespace
}  // namespace quorvane

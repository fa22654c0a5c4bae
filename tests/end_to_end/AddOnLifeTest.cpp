// The add-on's installation, launch, update and removal, with real processes and files.

#include "tests/end_to_end/InstalledAddOn.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

TEST(EndToEndLife, InstallStatusQuitAndRemoveWithTheHostAlone) {
    InstalledAddOn life;
    const auto installed = life.host({"install"});
    EXPECT_EQ(installed.status, 0) << installed.text;
    EXPECT_NE(installed.text.find("The add-on is running.\n"), std::string::npos) << installed.text;
    EXPECT_NE(installed.text.find("no host is running"), std::string::npos) << installed.text;
    EXPECT_TRUE(fs::exists(life.loginItem()));
    EXPECT_NE(life.host({"status"}).text.find("Add-on:  running, version 1.0.0, not connected"),
              std::string::npos);
    LoggedProcess host = life.session.startHost();
    ASSERT_TRUE(life.says("Configuration: enabled true, removal false"));
    EXPECT_NE(life.host({"status"}).text.find("Add-on:  running, version 1.0.0, connected"),
              std::string::npos);
    EXPECT_EQ(life.host({"quit"}).text,
              "The add-on has quit. It starts again at the next login.\n");
    EXPECT_EQ(life.host({"quit"}).status, 1);
    EXPECT_EQ(life.host({"launch"}).status, 0);

    // Removal while it runs, is connected and shows the card.
    LoggedProcess locker = life.session.startLocker();
    ASSERT_TRUE(life.says("entrance: window"));
    const auto removed = life.host({"remove"});
    EXPECT_EQ(removed.text, "Removed the add-on, its login item and its settings.\n");
    EXPECT_TRUE(life.says("windows: closing 1"));
    EXPECT_TRUE(life.says("removal: finished; quitting"));
    EXPECT_FALSE(fs::exists(life.support()));
    EXPECT_FALSE(fs::exists(life.loginItem()));
    EXPECT_FALSE(fs::exists(life.folder() / life.preferences()));
    EXPECT_EQ(life.host({"remove"}).text, "The add-on is not installed.\n");
}

TEST(EndToEndLife, AnUpdateWhileTheCardShowsBringsItBack) {
    InstalledAddOn life;
    LoggedProcess host = life.session.startHost();
    ASSERT_EQ(life.host({"install"}).status, 0);
    LoggedProcess locker = life.session.startLocker();
    ASSERT_TRUE(life.says("entrance: window"));
    const auto updated = life.host({"update", "--from", life.copyBundle("new/X.app", "1.10.0")});
    EXPECT_EQ(updated.text, "Updated 1.0.0 to version 1.10.0.\nThe add-on is running.\n");
    // Both copies write one log, so these lines appear in this order.
    EXPECT_TRUE(life.says("installer: quitting"));
    EXPECT_TRUE(life.says("windows: closing 1"));
    EXPECT_TRUE(life.says("launch: 1.10.0"));
    EXPECT_TRUE(life.says("entrance: window")) << life.log();
    EXPECT_EQ(life.log().find("launch: an older copy"), std::string::npos);
}

TEST(EndToEndLife, OfTwoCopiesStartedAtOnceOneDraws) {
    InstalledAddOn life;
    LoggedProcess host = life.session.startHost();
    LoggedProcess locker = life.session.startLocker();
    // The process that is created first executes the add-on last.
    const auto gate = life.folder() / "gate";
    LoggedProcess second = life.session.start(
        {"sh", "-c", "until [ -e \"$0\" ]; do sleep 0.05; done; exec \"$@\"", gate, ADDON_PROGRAM});
    LoggedProcess first = life.session.start({ADDON_PROGRAM});
    ASSERT_TRUE(first.says("entrance: window")) << first.log();
    life.folder().write("gate", "");
    const std::string pid = std::to_string(first.process().pid());
    ASSERT_TRUE(second.says("launch: an older copy (pid " + pid +
                            ") is still running after 10.0 seconds; asking it to quit"));
    EXPECT_EQ(second.count("windows: building"), 0);
    EXPECT_TRUE(first.says("windows: closing 1 (state)"));
    EXPECT_TRUE(first.process().wait(20s));
    EXPECT_TRUE(second.says("launch: the previous copy (pid " + pid + ") quit when asked"));
    EXPECT_TRUE(second.says("entrance: window")) << second.log();
}

TEST(EndToEndLife, WhatIsNotTheAddOnsIsNeverDeleted) {
    InstalledAddOn life;
    const auto uninstall = [&](const fs::path& bundle) {
        LoggedProcess removal =
            life.session.start({InstalledAddOn::programIn(bundle), "--uninstall", "--version"});
        removal.says("; quitting");
        removal.process().wait(20s);
        return removal.count("refusing to delete");
    };
    // The support folder is a symbolic link. The running copy is the add-on and is deleted.
    life.folder().write("precious/file", "kept");
    fs::create_directories(life.folder() / "data");
    fs::create_directory_symlink(life.folder() / "precious", life.support());
    fs::path copy = life.copyBundle("copy/X.app", "1.0.0");
    EXPECT_EQ(uninstall(copy), 1);
    EXPECT_FALSE(fs::exists(copy));
    EXPECT_TRUE(fs::is_symlink(life.support()));
    EXPECT_EQ(life.folder().read("precious/file"), "kept");

    // The support folder holds a foreign bundle.
    fs::remove(life.support());
    life.folder().write(std::string{"data/"} + InstalledAddOn::kIdentifier +
                            "/Quorvane Lock Screen.app/Contents/Info.plist",
                        "{ CFBundleIdentifier = \"another.Bundle\"; }");
    copy = life.copyBundle("copy/X.app", "1.0.0");
    EXPECT_EQ(uninstall(copy), 1);
    EXPECT_TRUE(fs::exists(life.place() / "Contents/Info.plist"));
    EXPECT_FALSE(fs::exists(copy));
    const auto refused = life.host({"remove"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(fs::exists(life.place() / "Contents/Info.plist")) << refused.text;
}

TEST(EndToEndLife, InstallsWithAwkwardFoldersAndFailsPlainly) {
    InstalledAddOn life;
    const auto home = life.folder() / "home";
    auto run = life.host({"install"}, {{"XDG_DATA_HOME", "relative"}});
    EXPECT_EQ(run.status, 0) << run.text;
    EXPECT_TRUE(fs::exists(home / ".local/share" / InstalledAddOn::kIdentifier));
    EXPECT_EQ(life.host({"remove"}, {{"XDG_DATA_HOME", "relative"}}).status, 0);
    run = life.run({"env", "-u", "HOME", HOST_PROGRAM, "install"});
    EXPECT_EQ(run.status, 0) << run.text;

    // The folder cannot be created; then a file cannot be written.
    run = life.host({"install"}, {{"XDG_DATA_HOME", "/proc/nowhere"}});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.text.starts_with("quorvane-host: nothing was installed: ")) << run.text;
    const auto limited = [&](const std::string& before) {
        return life.run({"sh", "-c", before + "ulimit -f 100; exec \"$@\"", "sh", HOST_PROGRAM,
                         "update", "--from", life.copyBundle("new/X.app", "2.0.0")});
    };
    run = limited("trap '' XFSZ; ");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.text.find("File too large"), std::string::npos) << run.text;
    fs::remove_all(life.folder() / "new");
    EXPECT_EQ(std::distance(fs::directory_iterator{life.support()}, {}), 1) << "unchanged";
    // Killed while copying: the old bundle stays, and the next install discards the copy.
    EXPECT_EQ(limited("").status, -1);
    fs::remove_all(life.folder() / "new");
    EXPECT_NE(life.host({"status"}).text.find("Install: version 1.0.0"), std::string::npos);
    EXPECT_EQ(life.host({"install"}).status, 0);
    EXPECT_EQ(std::distance(fs::directory_iterator{life.support()}, {}), 1);
}

}  // namespace
}  // namespace quorvane

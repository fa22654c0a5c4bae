// A real player without sound output: the card shows its track, and the card's controls reach it.

#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kNone = std::string::npos;
const PlayerGeometry kGeometry = PlayerGeometry::make(false, false);

class RealPlayer : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directories(session.folder() / "music");
        makeMusic("one.flac", "sine=duration=120", "Still Water");
        makeMusic("two.flac", "sine=duration=120", "Low Tide");
        makeMusic("cover.png", "color=c=orange:size=64x64", "");
        player = session.start({"mpv", "--no-config", "--no-video", "--ao=null", "--idle=no",
                                "--no-terminal", "--loop-playlist", "--volume=80",
                                "--script=/usr/lib/mpv-mpris/mpris.so", inMusic("one.flac"),
                                inMusic("two.flac")});
        host = session.startHost({"--player", "mpris"});
        // The add-on receives no changes before its connection to the bus is made.
        EXPECT_TRUE(eventually([&] { return runHost("status").find("Still Water") != kNone; }));
        addOn = session.startAddOn();
    }

    std::string runHost(const std::string& words) const {
        return LoggedProcess::run({"sh", "-c", std::string{HOST_PROGRAM} + ' ' + words},
                                  session.environment())
            .text;
    }

    std::string inMusic(const std::string& name) {
        return (session.folder() / ("music/" + name)).string();
    }
    void makeMusic(const std::string& name, const std::string& source, const std::string& title) {
        const auto made = LoggedProcess::run(
            {"ffmpeg", "-loglevel", "error", "-f", "lavfi", "-i", source, "-frames:v", "1",
             "-metadata", "title=" + title, "-metadata", "artist=The Quiet Harbour", inMusic(name)},
            session.environment());
        ASSERT_EQ(made.status, 0) << "ffmpeg: " << made.text;
    }
    // The player's own answer, through an independent tool.
    std::string ask(const std::string& what, const std::string& value = "") {
        return LoggedProcess::run({"sh", "-c", "playerctl --player=mpv $0 $1", what, value},
                                  session.environment())
            .text;
    }
    bool hasCome(const std::string& text) {
        return eventually([&] { return addOn.count(text) > 0; });
    }

    LockSession session;
    LoggedProcess player;
    LoggedProcess host;
    LoggedProcess addOn;
};

TEST_F(RealPlayer, StandsOnTheCardAndObeysIt) {
    ASSERT_TRUE(hasCome("state: now 'Still Water' — 'The Quiet Harbour'"))
        << addOn.log() << host.log() << player.log();
    ASSERT_TRUE(hasCome("volume 80"));
    ASSERT_TRUE(hasCome("artwork ")) << "the picture next to the files";
    LoggedProcess locker = session.startLocker();
    const CardOnScreen card = session.nextCard(addOn);
    ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    const X11Client probe = session.probe();

    ASSERT_TRUE(LockSession::click(probe, addOn, card.middleOf(kGeometry.next)));
    ASSERT_TRUE(hasCome("state: now 'Low Tide'")) << addOn.log();

    ASSERT_EQ(ask("status"), "Playing\n");
    ASSERT_TRUE(LockSession::click(probe, addOn, card.middleOf(kGeometry.playPause)));
    EXPECT_TRUE(eventually([&] { return ask("status") == "Paused\n"; })) << host.log();
    ask("position", "75");
    std::string told;
    EXPECT_TRUE(eventually([&] {
        told = runHost("status");
        return told.find("paused \"Low Tide\" by The Quiet Harbour (1:1") != std::string::npos;
    })) << told;

    const int known = addOn.count("volume: step to ");
    ASSERT_TRUE(LockSession::click(probe, addOn, card.middleOf(kGeometry.volume)));
    ASSERT_TRUE(hasCome("volume: drag ended at 50")) << addOn.log();
    EXPECT_GT(addOn.count("volume: step to "), known);
    EXPECT_TRUE(eventually([&] { return ask("volume").starts_with("0.5"); }));

    ask("volume", "0.25");
    EXPECT_TRUE(hasCome("volume 25")) << addOn.log();
    player.process().end(SIGKILL);
    EXPECT_TRUE(addOn.says("exit: window")) << addOn.log();
}

TEST_F(RealPlayer, ObeysTheUsersSettings) {
    const auto becomes = [&](const std::string& status) {
        return eventually([&] { return ask("status") == status + '\n'; });
    };
    ASSERT_TRUE(hasCome("state: now 'Still Water'")) << addOn.log() << host.log();
    EXPECT_EQ(runHost("players"), "PLAYER  STATE\nmpv     playing  followed: it plays\n");
    runHost("set privacy player");
    EXPECT_TRUE(hasCome("state: now 'mpv'")) << addOn.log();
    EXPECT_EQ(host.count("Still Water"), 0);

    const auto isKnownToPlay = [&] {
        return runHost("players").find("followed: it plays") != kNone;
    };
    runHost("set pause-on-lock on");
    runHost("set resume-on-unlock on");
    ASSERT_TRUE(host.says("locks: the add-on reports lock screens")) << host.log();
    LoggedProcess locker = session.startLocker();
    EXPECT_TRUE(becomes("Paused")) << "a lock that only the add-on sees" << host.log();
    locker.process().end(SIGTERM);
    EXPECT_TRUE(becomes("Playing")) << host.log();

    player.process().signal(SIGSTOP);
    EXPECT_TRUE(
        eventually([&] { return runHost("status").find("Player:  mpv does not") != kNone; }));
    EXPECT_TRUE(addOn.says("card hidden")) << addOn.log();
    player.process().signal(SIGCONT);
    EXPECT_TRUE(eventually(isKnownToPlay));

    locker = session.startLocker();
    EXPECT_TRUE(becomes("Paused")) << host.log();
    session.x().process().end(SIGTERM);
    EXPECT_TRUE(host.says("locks: the add-on no longer reports lock screens")) << addOn.log();
    EXPECT_TRUE(eventually([&] { return runHost("status").find("paused \"mpv\"") != kNone; }));
    EXPECT_EQ(ask("status"), "Paused\n") << "this was no unlock";
}

// A player that needs a terminal, has no artwork, and does not report its volume.
TEST(SecondRealPlayer, StandsOnTheCardAndObeysIt) {
    LockSession session;
    session.folder().write("config/cmus/rc", "set output_plugin=ao\nset dsp.ao.driver=null\n");
    const auto music = [&](const char* title) {
        const std::string file = (session.folder() / title).string() + ".flac";
        LoggedProcess::run({"ffmpeg", "-loglevel", "error", "-f", "lavfi", "-i",
                            "sine=duration=999", "-metadata", std::string{"title="} + title, file},
                           session.environment());
        return file;
    };
    const auto remote = [&](std::vector<std::string> words) {
        words.insert(words.begin(), {"cmus-remote"});
        return LoggedProcess::run(words, session.environment()).text;
    };
    const std::vector<std::string> files{music("Still"), music("Low")};
    const LoggedProcess player = session.start({"script", "-qfc", "TERM=xterm cmus", "/dev/null"});
    ASSERT_TRUE(eventually([&] { return remote({"-Q"}).starts_with("status"); }));
    LoggedProcess host = session.startHost({"--player", "mpris"});
    LoggedProcess addOn = session.startAddOn();
    remote({"-q", files[0], files[1]});
    remote({"--next"});
    remote({"--play"});
    ASSERT_TRUE(addOn.says("state: now 'Still'")) << addOn.log() << host.log();
    LoggedProcess locker = session.startLocker();
    const CardOnScreen card = session.nextCard(addOn);
    const X11Client probe = session.probe();
    ASSERT_TRUE(LockSession::click(probe, addOn, card.middleOf(kGeometry.next)));
    EXPECT_TRUE(addOn.says("state: now 'Low'")) << addOn.log() << remote({"-Q"});
    ASSERT_TRUE(LockSession::click(probe, addOn, card.middleOf(kGeometry.playPause)));
    EXPECT_TRUE(eventually([&] { return remote({"-Q"}).starts_with("status paused"); }));
    EXPECT_EQ(addOn.count("artwork"), 0);
    remote({"-C", "quit"});
    EXPECT_TRUE(addOn.says("exit: window")) << addOn.log();
}

}  // namespace
}  // namespace quorvane

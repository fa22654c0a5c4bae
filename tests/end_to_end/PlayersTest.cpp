// A real player without sound output: the card shows its track, and the card's controls reach it.

#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

const PlayerGeometry kGeometry = PlayerGeometry::make(false, false);

class RealPlayer : public testing::Test {
protected:
    void SetUp() override {
        makeMusic("one", "Still Water", "220");
        makeMusic("two", "Low Tide", "330");
        run({"-f", "lavfi", "-i", "color=c=orange:size=64x64", "-frames:v", "1",
             inMusic("cover.png")});
        player = session.start({"mpv", "--no-config", "--no-video", "--ao=null", "--idle=no",
                                "--no-terminal", "--loop-playlist", "--volume=80",
                                "--script=/usr/lib/mpv-mpris/mpris.so", inMusic("one.flac"),
                                inMusic("two.flac")});
        host = session.startHost({"--player", "mpris"});
        addOn = session.startAddOn();
    }

    std::string inMusic(const std::string& name) {
        return (session.folder() / ("music/" + name)).string();
    }
    void makeMusic(const std::string& name, const std::string& title, const std::string& pitch) {
        std::filesystem::create_directories(session.folder() / "music");
        run({"-f", "lavfi", "-i", "sine=frequency=" + pitch + ":duration=120", "-metadata",
             "title=" + title, "-metadata", "artist=The Quiet Harbour", inMusic(name + ".flac")});
    }
    void run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"ffmpeg", "-loglevel", "error", "-y"});
        const auto converted = LoggedProcess::run(arguments, session.environment());
        ASSERT_EQ(converted.status, 0) << "ffmpeg: " << converted.text;
    }
    // The player's own answer, through an independent tool.
    std::string ask(const std::string& what, const std::string& value = "") {
        LoggedProcess tool =
            session.start({"sh", "-c", "playerctl --player=mpv $0 $1 >&2", what, value});
        const std::string answer = value.empty() ? tool.next("", 10s) : "";
        tool.process().wait(10s);
        return answer;
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
    const CardOnScreen card = LockSession::nextCard(addOn);
    ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    const X11Client probe = session.probe();

    ASSERT_TRUE(LockSession::click(probe, addOn, card.middleOf(kGeometry.next)));
    ASSERT_TRUE(hasCome("state: now 'Low Tide'")) << addOn.log();

    ASSERT_EQ(ask("status"), "Playing");
    ASSERT_TRUE(LockSession::click(probe, addOn, card.middleOf(kGeometry.playPause)));
    EXPECT_TRUE(eventually([&] { return ask("status") == "Paused"; })) << host.log();
    ask("position", "75");
    std::string told;
    EXPECT_TRUE(eventually([&] {
        told = LoggedProcess::run({HOST_PROGRAM, "status"}, session.environment()).text;
        return told.find("paused \"Low Tide\" by The Quiet Harbour (1:1") != std::string::npos;
    })) << told;

    const int known = addOn.count("volume: step to ");
    ASSERT_TRUE(LockSession::click(probe, addOn, card.middleOf(kGeometry.volume)));
    ASSERT_TRUE(hasCome("volume: drag ended at 50")) << addOn.log();
    EXPECT_GT(addOn.count("volume: step to "), known);
    EXPECT_TRUE(eventually([&] { return ask("volume").starts_with("0.5"); }));

    ask("volume", "0.25");
    EXPECT_TRUE(hasCome("volume 25")) << addOn.log();
}

TEST_F(RealPlayer, ThatEndsTakesTheCardAlong) {
    ASSERT_TRUE(hasCome("state: now 'Still Water'")) << addOn.log();
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    player.process().end(SIGKILL);
    EXPECT_TRUE(addOn.says("exit: window")) << addOn.log();
    EXPECT_TRUE(addOn.says("state: no track"));
}

}  // namespace
}  // namespace quorvane

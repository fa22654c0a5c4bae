// A real player: mpv with its MPRIS plugin, on a bus of its own, heard by nobody.

#include <gtest/gtest.h>

#include <thread>

#include "host/MprisPlayer.hpp"
#include "platform/linux/SerialQueueLinux.hpp"
#include "platform/linux/ServicesLinux.hpp"
#include "tests/support/LoopRunner.hpp"
#include "tests/support/PrivateBus.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

std::string littleEndian(std::uint32_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i));
    return text;
}

std::string chunk(const std::string& name, const std::string& contents) {
    const std::string padding(contents.size() % 2, '\0');
    return name + littleEndian(static_cast<std::uint32_t>(contents.size()), 4) + contents + padding;
}

// Silence with tags: 8000 samples a second of one byte.
std::string waveFile(const std::string& title, const std::string& artist, unsigned seconds) {
    const std::string format = littleEndian(1, 2) + littleEndian(1, 2) + littleEndian(8000, 4) +
                               littleEndian(8000, 4) + littleEndian(1, 2) + littleEndian(8, 2);
    const std::string tags = chunk("INAM", title + '\0') + chunk("IART", artist + '\0');
    return chunk("RIFF", "WAVE" + chunk("fmt ", format) + chunk("LIST", "INFO" + tags) +
                             chunk("data", std::string(8000 * seconds, '\x80')));
}

bool isInstalled() {
    const bool hasPlugin = std::filesystem::exists("/etc/mpv/scripts/mpris.so");
    return hasPlugin && std::system("command -v mpv >/dev/null") == 0;
}

class RealPlayerTest : public testing::Test {
protected:
    RealPlayerTest() {
        privateBus.useHere();
        linux = std::make_shared<ServicesLinux>(LogSink{});
        services.clock = linux->loop.clock();
        services.mainThread = linux->loop.mainThread();
        services.owner = linux;
        folder.write("music/cover.png", "not really a picture");
        folder.write("music/one.wav", waveFile("Still Water", "The Quiet Harbour", 60));
        folder.write("music/two.wav", waveFile("Low Tide", "The Quiet Harbour", 60));
    }

    void start() {
        mpv =
            ChildProcess{{"mpv", "--no-video", "--ao=null", "--no-terminal", "--volume=80",
                          (folder / "music/one.wav").string(), (folder / "music/two.wav").string()},
                         {privateBus.environment(), "HOME=" + folder.path().string(),
                          "XDG_CONFIG_HOME=" + folder.path().string()}};
        player.emplace(MprisPlayer::Services{.players = makeLiveMediaPlayers(services),
                                             .files = makeLiveRegularFiles(),
                                             .clock = services.clock,
                                             .mainThread = services.mainThread,
                                             .makeSerialQueue = makeSerialQueuesLinux(),
                                             .log = {}},
                       std::nullopt);
    }
    bool until(const std::function<bool(const QuorvanePlayerState&)>& condition) {
        return runUntil(linux->loop, [&] { return condition(player->snapshot().state); });
    }
    double position() { return player->snapshot().anchor.secondsAt(services.clock.now()); }

    PrivateBus privateBus;
    TemporaryFolder folder;
    std::shared_ptr<ServicesLinux> linux;
    LiveServices services;
    ChildProcess mpv;
    std::optional<MprisPlayer> player;
};

TEST_F(RealPlayerTest, IsFollowedAndObeys) {
    if (!isInstalled()) GTEST_SKIP() << "mpv with its MPRIS plugin is not installed";
    start();
    ASSERT_TRUE(until([](const auto& state) {
        return state.track && state.track->title == "Still Water" && state.track->duration &&
               state.track->artworkData && state.volume == 80;
    }));
    const auto first = player->snapshot().state;
    EXPECT_EQ(first.playerState, XPCPlayerState::playing);
    EXPECT_EQ(first.track->artist, "The Quiet Harbour");
    EXPECT_NEAR(*first.track->duration, 60, 0.1);
    EXPECT_EQ(textOf(first.track->artworkData->view()), "not really a picture");
    EXPECT_EQ(first.playerType, std::nullopt);

    player->perform(QuorvaneAction::playPause);
    ASSERT_TRUE(until([](const auto& s) { return s.playerState == XPCPlayerState::paused; }));
    player->setVolume(30);
    ASSERT_TRUE(until([](const auto& s) { return s.volume == 30; }));
    player->perform(QuorvaneAction::toggleMute);
    ASSERT_TRUE(until([](const auto& s) { return s.isMuted; }));
    player->perform(QuorvaneAction::toggleMute);
    ASSERT_TRUE(until([](const auto& s) { return s.volume == 30; }));
    player->perform(QuorvaneAction::toggleRepeat);
    ASSERT_TRUE(until([](const auto& s) { return s.repeatMode == XPCRepeatMode::all; }));

    player->perform(QuorvaneAction::nextTrack);
    ASSERT_TRUE(until([](const auto& s) { return s.track && s.track->title == "Low Tide"; }));
    player->perform(QuorvaneAction::previousTrack);
    ASSERT_TRUE(until([](const auto& s) { return s.track && s.track->title == "Still Water"; }));
    EXPECT_LT(position(), 30);
}

TEST_F(RealPlayerTest, ItsPositionAndItsEndAreSeen) {
    if (!isInstalled()) GTEST_SKIP() << "mpv with its MPRIS plugin is not installed";
    start();
    ASSERT_TRUE(until([](const auto& s) { return s.track && s.track->duration; }));
    // A player that is just starting passes over it.
    for (int attempt = 0; attempt < 10 && position() < 40; ++attempt) {
        ChildProcess seek{{"playerctl", "--player=mpv", "position", "40"},
                          {privateBus.environment()}};
        runUntil(
            linux->loop, [&] { return position() >= 40; }, 2s);
    }
    EXPECT_GE(position(), 40);
    EXPECT_LT(position(), 50);
    mpv.signal(SIGSTOP);
    player->freshen();
    player->perform(QuorvaneAction::nextTrack);
    runOnce(linux->loop);
    EXPECT_TRUE(player->snapshot().state.track) << "a player that hangs is not waited for";
    mpv.end(SIGKILL);
    EXPECT_TRUE(until([](const auto& state) { return !state.track; }));
}

}  // namespace
}  // namespace quorvane

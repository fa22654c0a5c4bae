#include "host/players/MprisPlayer.hpp"

#include <gtest/gtest.h>

#include "platform/Listeners.hpp"
#include "tests/support/ManualClock.hpp"
#include "tests/support/ManualMainThread.hpp"
#include "tests/support/ManualSerialQueues.hpp"
#include "tests/support/MemoryFiles.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

constexpr char kQueue[] = "example.quillon.Quorvane.artwork";
constexpr char kMpv[] = "org.mpris.MediaPlayer2.mpv";
constexpr char kVlc[] = "org.mpris.MediaPlayer2.vlc";

class MprisPlayerTest : public testing::Test {
protected:
    MprisPlayerTest() {
        files.put("/one.png", "picture one");
        files.put("/two.png", "picture two");
    }

    MediaPlayers table() {
        return {.list = [this]() -> const std::vector<MediaPlayer>& { return players; },
                .observe = [this](auto handler) { return listeners.add(std::move(handler)); },
                .refresh = [this](const std::string& name) { said.push_back("? " + name); },
                .call = [this](const std::string& name,
                               const std::string& method) { said.push_back(method + ' ' + name); },
                .set =
                    [this](const std::string& name, const std::string& property,
                           const PropertyValue& value) {
                        const auto* number = value.as<double>();
                        said.push_back(property + '=' + std::to_string(number ? *number : -1) +
                                       ' ' + name);
                    },
                .raise = [this](const std::string& name) { said.push_back("raise " + name); }};
    }

    SoundServer soundServer() {
        return {.observe =
                    [this](auto handler) {
                        ++soundObservations;
                        onSound = handler;
                        return Handle{[this] { onSound = nullptr; }};
                    },
                .setVolume =
                    [this](std::optional<std::uint32_t> stream, double volume) {
                        said.push_back("sound " + std::to_string(stream.value_or(0)) + '=' +
                                       std::to_string(volume));
                    }};
    }

    void start(std::optional<std::string> onlyNamed = std::nullopt) {
        player.emplace(MprisPlayer::Services{.players = table(),
                                             .soundServer = soundServer(),
                                             .files = files.table(),
                                             .clock = clock.clock(),
                                             .mainThread = main.mainThread(),
                                             .makeSerialQueue = queues.make(),
                                             .log = {}},
                       std::move(onlyNamed));
        player->onChanged = [this] { ++changes; };
    }

    MediaPlayer& add(const char* name, const char* status, const char* title,
                     const char* artwork = "") {
        players.push_back({.busName = name, .identity = {}, .properties = {}});
        MediaPlayer& added = players.back();
        added.properties["PlaybackStatus"] = {std::string{status}};
        added.properties["Volume"] = {0.8};
        play(added, title, artwork);
        return added;
    }
    static void play(MediaPlayer& it, const char* title, const char* artwork = "") {
        it.properties["Metadata"] = {
            PropertyDictionary{{"xesam:title", {std::string{title}}},
                               {"mpris:length", {std::int64_t{100'000'000}}},
                               {"mpris:artUrl", {std::string{artwork}}}}};
    }
    static void set(MediaPlayer& it, const char* status) {
        it.properties["PlaybackStatus"] = {std::string{status}};
    }
    void tellPosition(MediaPlayer& it, double seconds) {
        it.position = static_cast<std::int64_t>(seconds * 1e6);
        it.positionAt = clock.clock().now();
        announce();
    }
    void announce() { listeners.call(); }
    // Runs the queue's reads and delivers their results.
    void read() {
        while (queues.runNext(kQueue)) main.run();
    }

    std::string title() const {
        const auto track = player->snapshot().state.track;
        return track ? track->title : "";
    }
    double position() { return player->snapshot().anchor.secondsAt(clock.clock().now()); }
    std::string artwork() const {
        const auto track = player->snapshot().state.track;
        return track && track->artworkData ? std::string{textOf(track->artworkData->view())} : "";
    }
    std::vector<std::string> takeSaid() { return std::exchange(said, {}); }

    using Said = std::vector<std::string>;
    ManualClock clock;
    ManualMainThread main;
    MemoryFiles files;
    ManualSerialQueues queues;
    std::vector<MediaPlayer> players;
    Listeners<> listeners;
    std::vector<std::string> said;
    std::function<void(SoundLevels)> onSound;
    int soundObservations = 0;
    std::optional<MprisPlayer> player;
    int changes = 0;
};

TEST_F(MprisPlayerTest, FollowsThePlayerThatPlays) {
    start();
    EXPECT_EQ(player->snapshot().state, QuorvanePlayerState{});
    add("org.mpris.MediaPlayer2.playerctld", "Playing", "proxy");
    announce();
    EXPECT_EQ(title(), "");
    add(kMpv, "Paused", "song");
    announce();
    EXPECT_EQ(title(), "song");
    add(kVlc, "Playing", "film");
    announce();
    EXPECT_EQ(title(), "film");
    EXPECT_EQ(changes, 3);
    player->perform(QuorvaneAction::switchPlayer);
    EXPECT_EQ(title(), "song");
    players.clear();
    announce();
    EXPECT_EQ(player->snapshot().state, QuorvanePlayerState{});
}

TEST_F(MprisPlayerTest, FollowsOnlyTheNamedOne) {
    add(kVlc, "Playing", "film");
    start("mpv");
    EXPECT_EQ(title(), "");
    add("org.mpris.MediaPlayer2.mpv.instance4", "Paused", "song");
    announce();
    EXPECT_EQ(title(), "song");
}

TEST_F(MprisPlayerTest, ExtrapolatesThePositionBetweenReports) {
    MediaPlayer& mpv = add(kMpv, "Playing", "song");
    start();
    EXPECT_EQ(takeSaid(), Said{"? org.mpris.MediaPlayer2.mpv"});
    tellPosition(mpv, 20);
    clock.advance(3s);
    EXPECT_DOUBLE_EQ(position(), 23);
    set(mpv, "Paused");
    announce();
    EXPECT_EQ(takeSaid(), Said{"? org.mpris.MediaPlayer2.mpv"});
    clock.advance(10s);
    EXPECT_DOUBLE_EQ(position(), 23) << "the position at the pause, without a report";
    set(mpv, "Playing");
    announce();
    clock.advance(2s);
    EXPECT_DOUBLE_EQ(position(), 25);
    mpv.properties["Rate"] = {2.0};
    announce();
    clock.advance(5s);
    EXPECT_DOUBLE_EQ(position(), 35);
    tellPosition(mpv, 70);
    EXPECT_DOUBLE_EQ(position(), 70);
    takeSaid();
    play(mpv, "next song");
    announce();
    EXPECT_DOUBLE_EQ(position(), 0);
    EXPECT_EQ(takeSaid(), Said{"? org.mpris.MediaPlayer2.mpv"});
}

TEST_F(MprisPlayerTest, IgnoresAPositionThatIsAlwaysZero) {
    MediaPlayer& mpv = add(kMpv, "Playing", "song");
    start();
    tellPosition(mpv, 0);
    clock.advance(4s);
    tellPosition(mpv, 0);
    EXPECT_DOUBLE_EQ(position(), 4);
    tellPosition(mpv, 7);
    clock.advance(1s);
    tellPosition(mpv, 0);
    EXPECT_DOUBLE_EQ(position(), 0) << "a player that knows its position has restarted the track";
}

TEST_F(MprisPlayerTest, RefreshesAtMostOnceASecond) {
    MediaPlayer& mpv = add(kMpv, "Playing", "song");
    start();
    takeSaid();
    for (int i = 0; i < 5; ++i) player->refresh();
    EXPECT_EQ(takeSaid().size(), 1u);
    clock.advance(2s);
    player->refresh();
    EXPECT_EQ(takeSaid().size(), 1u);
    tellPosition(mpv, 3);
    EXPECT_TRUE(takeSaid().empty()) << "a report does not cause a request";
}

TEST_F(MprisPlayerTest, ReadsArtworkInTheBackgroundAndAgainOnlyWhenItChanges) {
    MediaPlayer& mpv = add(kMpv, "Playing", "song", "file:///late.png");
    start();
    read();
    EXPECT_EQ(artwork(), "");
    files.put("/late.png", "late");
    player->refresh();
    EXPECT_EQ(artwork(), "");
    read();
    EXPECT_EQ(artwork(), "late");
    play(mpv, "next song", "file:///late.png");
    announce();
    EXPECT_EQ(artwork(), "late") << "kept during the check";
    read();
    EXPECT_EQ(files.reads, 1);
    files.put("/late.png", "later");
    clock.advance(2s);
    player->refresh();
    read();
    EXPECT_EQ(artwork(), "later");
    clock.advance(2s);
    files.remove("/late.png");
    player->refresh();
    read();
    EXPECT_EQ(artwork(), "");
}

TEST_F(MprisPlayerTest, ShowsNoArtworkThatIsNotTheTracks) {
    MediaPlayer& mpv = add(kMpv, "Playing", "song", "file:///one.png");
    start();
    play(mpv, "next song", "file:///two.png");
    announce();
    ASSERT_EQ(queues.waiting(kQueue), 1u) << "one check at a time";
    queues.runNext(kQueue);
    main.run();
    EXPECT_EQ(artwork(), "") << "the result was for the previous song";
    read();
    EXPECT_EQ(artwork(), "picture two");

    for (const char* url : {"https://example.org/one.png", "", "file:///absent.png"}) {
        play(mpv, "song", url);
        announce();
        read();
        EXPECT_EQ(artwork(), "") << url;
    }
    files.put("/huge.png", std::string(ArtworkLoader::kLargest + 1, 'x'));
    play(mpv, "song", "file:///huge.png");
    announce();
    read();
    EXPECT_EQ(artwork(), "");
}

TEST_F(MprisPlayerTest, MayBeDestroyedWhileArtworkIsRead) {
    add(kMpv, "Playing", "song", "file:///one.png");
    start();
    queues.runNext(kQueue);
    player.reset();
    EXPECT_EQ(main.run(), 1);
}

TEST_F(MprisPlayerTest, CommandsTheChosenPlayer) {
    MediaPlayer& mpv = add(kMpv, "Playing", "song");
    start();
    takeSaid();
    player->perform(QuorvaneAction::nextTrack);
    player->setVolume(30);
    player->perform(QuorvaneAction::activatePlayer);
    player->perform(QuorvaneAction::toggleMute);
    EXPECT_EQ(
        takeSaid(),
        (Said{"Next org.mpris.MediaPlayer2.mpv", "Volume=0.300000 org.mpris.MediaPlayer2.mpv",
              "raise org.mpris.MediaPlayer2.mpv", "Volume=0.000000 org.mpris.MediaPlayer2.mpv"}));
    mpv.properties["Volume"] = {0.0};
    announce();
    player->perform(QuorvaneAction::toggleMute);
    EXPECT_EQ(takeSaid(), Said{"Volume=0.800000 org.mpris.MediaPlayer2.mpv"});
    mpv.properties["CanGoNext"] = {false};
    EXPECT_FALSE(player->perform(QuorvaneAction::nextTrack));
    EXPECT_TRUE(takeSaid().empty());
}

TEST_F(MprisPlayerTest, UsesTheSoundServerOnlyForAPlayerWithoutAVolume) {
    MediaPlayer& mpv = add(kMpv, "Playing", "song");
    start();
    EXPECT_FALSE(onSound);
    mpv.processID = 7;
    mpv.properties.erase("Volume");
    announce();
    ASSERT_TRUE(onSound);
    EXPECT_FALSE(player->setVolume(30)) << "no server yet";
    changes = 0;
    onSound({{{.number = 3, .processID = 7, .isPlaying = true, .volume = 0.4}}, 0.9});
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(player->snapshot().state.volume, 40);
    takeSaid();
    EXPECT_TRUE(player->setVolume(30));
    EXPECT_EQ(takeSaid(), Said{"sound 3=0.300000"});

    onSound({});
    EXPECT_FALSE(player->setVolume(30)) << "the server has gone";
    announce();
    EXPECT_EQ(soundObservations, 1);
    play(mpv, "next song");
    announce();
    EXPECT_EQ(soundObservations, 2) << "retried with the next track";
    mpv.properties["Volume"] = {0.5};
    announce();
    EXPECT_FALSE(onSound);
    EXPECT_EQ(player->snapshot().state.volume, 50);
}

}  // namespace
}  // namespace quorvane

#include "host/players/MprisPlayer.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "host/players/LockPauser.hpp"
#include "platform/Listeners.hpp"
#include "tests/support/FakeNotices.hpp"
#include "tests/support/ManualClock.hpp"
#include "tests/support/ManualMainThread.hpp"
#include "tests/support/ManualSerialQueues.hpp"
#include "tests/support/MemoryFiles.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

constexpr char kQueue[] = "example.quillon.Quorvane.artwork";

PropertyValue text(std::string value) { return {std::move(value)}; }

class MprisPlayerTest : public testing::Test {
protected:
    MediaPlayers table() {
        return {.list = [this]() -> const std::vector<MediaPlayer>& { return players; },
                .observe = [this](auto handler) { return listeners.add(std::move(handler)); },
                .refresh = [this](const auto&) { said += "refresh "; },
                .call = [this](const auto&, const auto& method) { said += method + ' '; },
                .set = [this](const auto&, const auto& property,
                              const PropertyValue& value) { say(property, *value.as<double>()); }};
    }
    void start(std::optional<std::string> onlyNamed = std::nullopt) {
        player.emplace(
            MprisPlayer::Services{
                .players = table(),
                .soundServer = {.observe =
                                    [this](auto handler) {
                                        ++soundObservations;
                                        onSound = handler;
                                        return Handle{[this] { ++soundObservationsEnded; }};
                                    },
                                .setVolume = [this](auto, double volume) { say("sound", volume); }},
                .files = files.table(),
                .fetchPicture =
                    [this](const std::string& url, auto done) {
                        said += "fetch " + url + ' ';
                        fetched = done;
                        return Handle{[this] { fetched = nullptr; }};
                    },
                .clock = clock.clock(),
                .mainThread = main.mainThread(),
                .makeSerialQueue = queues.make(),
                .log = log.sink()},
            settings, std::move(onlyNamed));
        player->onChanged = [this] { ++changes; };
    }
    void say(const std::string& what, double volume) {
        said += what + '=' + std::to_string(std::lround(volume * 100)) + "% ";
    }
    // Starts with one player, which plays a song.
    void startSong(const std::string& artwork = "") {
        add("mpv", "Playing", "song", artwork);
        start();
    }
    void add(const std::string& name, const char* status, const char* title,
             const std::string& artwork = "") {
        players.push_back({.busName = "org.mpris.MediaPlayer2." + name,
                           .identity = {},
                           .properties = {{"PlaybackStatus", text(status)}, {"Volume", {0.8}}}});
        play(title, artwork);
    }
    // Changes the track of the newest player.
    void play(const char* title, const std::string& artwork = "") {
        players.back().artworkURL = std::make_shared<const std::string>(artwork);
        if (artwork.empty()) players.back().artworkURL = nullptr;
        change("Metadata", {PropertyDictionary{{"xesam:title", text(title)},
                                               {"xesam:artist", text("artist")},
                                               {"xesam:album", text("album")},
                                               {"mpris:length", {std::int64_t{100'000'000}}}}});
    }
    void change(const char* property, PropertyValue value) {
        players.back().properties[property] = std::move(value);
        announce();
    }
    void tellPosition(double seconds) {
        players.back().position = static_cast<std::int64_t>(seconds * 1e6);
        players.back().positionAt = clock.clock().now();
        announce();
    }
    void announce() { listeners.call(); }
    // Runs the queue's reads and delivers their results.
    void read() {
        while (queues.runNext(kQueue)) main.run();
    }
    void refresh() {
        clock.advance(1s);
        player->refresh();
    }

    // With locks that the test simulates by notices.
    LockPauser makePauser() {
        LockSources sources;
        sources.sessionDictionary = [this] {
            return PropertyValue{PropertyDictionary{{"CGSSessionScreenIsLocked", {isLocked}}}};
        };
        sources.observeWake = [this](auto handler) { return wakes.add(std::move(handler)); };
        const auto make = [this, sources] { return ++watches, sources; };
        return {{table(), notices.distributed(), make, log.sink()}, settings, std::nullopt};
    }
    void lock(bool locks) {
        isLocked = locks;
        notices.deliver(locks ? kScreenIsLocked : kScreenIsUnlocked);
    }

    XPCTrack track() const { return player->snapshot().state.track.value_or(XPCTrack{}); }
    std::string artwork() const {
        const auto picture = track().artworkData;
        return picture ? std::string{textOf(picture->view())} : "";
    }
    double positionAfter(Duration time) {
        clock.advance(time);
        return player->snapshot().anchor.secondsAt(clock.clock().now());
    }
    std::string takeSaid() { return std::exchange(said, {}); }

    Observable<Settings> settings;
    RecordingLog log;
    ManualClock clock;
    ManualMainThread main;
    MemoryFiles files;
    ManualSerialQueues queues;
    std::vector<MediaPlayer> players;
    Listeners<> listeners;
    std::string said;
    std::function<void(FetchAnswer)> fetched;  // null while nothing is fetched
    FakeNotices notices;
    Listeners<> wakes;
    int watches = 0;
    bool isLocked = false;
    std::function<void(SoundLevels)> onSound;
    int soundObservations = 0;
    int soundObservationsEnded = 0;
    std::optional<MprisPlayer> player;
    int changes = 0;
};

TEST_F(MprisPlayerTest, FollowsThePlayerThatPlays) {
    start();
    add("playerctld", "Playing", "proxy");
    EXPECT_EQ(player->snapshot().state, QuorvanePlayerState{});
    add("mpv.instance4", "Paused", "song");
    EXPECT_EQ(track().title, "song");
    add("vlc", "Playing", "film");
    EXPECT_EQ(track().title, "film");
    EXPECT_EQ(changes, 3);
    player->perform(QuorvaneAction::switchPlayer);
    EXPECT_EQ(track().title, "song");
    players.erase(players.begin() + 1);
    announce();
    EXPECT_EQ(track().title, "film");
    start("mpv");
    EXPECT_EQ(player->snapshot().state, QuorvanePlayerState{});
}

TEST_F(MprisPlayerTest, ListsThePlayersAndDropsThoseThatAreIgnoredSilentOrIdle) {
    settings.set({.ignored = {"VLC"}, .preferred = {"mpv"}});
    start();
    add("vlc.instance1", "Playing", "film");
    add("firefox", "Playing", "clip");
    add("mpv", "Playing", "song");
    EXPECT_EQ(PlayerList::of(player->players().userInfo()).text(),
              "PLAYER         STATE\n"
              "vlc.instance1  playing  ignored (see the setting ignore)\n"
              "firefox        playing  another one is preferred\n"
              "mpv            playing  followed: it plays\n");
    EXPECT_EQ(clock.pendingTimers(), 0u);
    change("PlaybackStatus", text("Paused"));
    players[1].isSilent = true;
    announce();
    EXPECT_EQ(track().title, "song") << "the one that plays does not answer";
    EXPECT_EQ(player->players().rows[1], (PlayerRow{"firefox", "silent", "does not answer"}));
    changes = 0;
    clock.advance(10min + 5s);
    EXPECT_EQ(player->snapshot().state, QuorvanePlayerState{});
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(clock.pendingTimers(), 0u);
    settings.set({.idleTime = 0min, .ignored = {"vlc"}});
    EXPECT_EQ(track().title, "song");
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

TEST_F(MprisPlayerTest, ExtrapolatesThePositionBetweenReports) {
    startSong();
    tellPosition(20);
    EXPECT_EQ(takeSaid(), "refresh ") << "a report does not cause a request";
    EXPECT_DOUBLE_EQ(positionAfter(3s), 23);
    change("PlaybackStatus", text("Paused"));
    EXPECT_EQ(takeSaid(), "refresh ");
    EXPECT_DOUBLE_EQ(positionAfter(10s), 23) << "the position at the pause, without a report";
    change("PlaybackStatus", text("Playing"));
    EXPECT_DOUBLE_EQ(positionAfter(2s), 25);
    change("Rate", {2.0});
    EXPECT_DOUBLE_EQ(positionAfter(5s), 35);
    tellPosition(70);
    EXPECT_DOUBLE_EQ(positionAfter(0s), 70);
    takeSaid();
    play("next song");
    EXPECT_EQ(takeSaid(), "refresh ");
    EXPECT_DOUBLE_EQ(positionAfter(0s), 0);

    tellPosition(0);
    clock.advance(2s);
    tellPosition(0);
    EXPECT_DOUBLE_EQ(positionAfter(0s), 4)
        << "a player that always reports 0 does not know its position";
    tellPosition(7);
    clock.advance(1s);
    tellPosition(0);
    EXPECT_DOUBLE_EQ(positionAfter(0s), 0)
        << "a player that knows its position has restarted the track";
}

TEST_F(MprisPlayerTest, ReadsArtworkInTheBackgroundAndAgainOnlyWhenItChanges) {
    startSong("file:///late.png");
    read();
    takeSaid();
    player->refresh();
    clock.advance(999ms);
    player->refresh();
    EXPECT_EQ(takeSaid(), "refresh ") << "at most once a second";
    read();
    files.put("/late.png", "late");
    refresh();
    EXPECT_EQ(artwork(), "");
    read();
    EXPECT_EQ(artwork(), "late");
    files.reads = 0;
    play("next song", "file:///late.png");
    EXPECT_EQ(artwork(), "") << "not the last track's, while the check is pending";
    read();
    EXPECT_EQ(artwork(), "late");
    EXPECT_EQ(files.reads, 0);
    files.put("/late.png", "later");
    refresh();
    read();
    EXPECT_EQ(artwork(), "later");
    files.remove("/late.png");
    refresh();
    read();
    EXPECT_EQ(artwork(), "");
}

TEST_F(MprisPlayerTest, ShowsNoArtworkThatIsNotTheTracks) {
    files.put("/one.png", "picture one");
    files.put("/two.png", "picture two");
    files.put("/huge.png", std::string(kLargestArtwork + 1, 'x'));
    startSong("file:///one.png");
    play("next song", "file:///two.png");
    ASSERT_EQ(queues.waiting(kQueue), 1u) << "one check at a time";
    queues.runNext(kQueue);
    main.run();
    EXPECT_EQ(artwork(), "") << "the result was for the previous song";
    read();
    EXPECT_EQ(artwork(), "picture two");
    play("the picture comes after the title");
    EXPECT_EQ(artwork(), "");
    play("the picture comes after the title", "/one.png");
    read();
    EXPECT_EQ(artwork(), "picture one");
    takeSaid();
    for (const char* url : {"https://example.org/one.png", "", "file:///huge.png", "one.png"}) {
        play("song", url);
        read();
        EXPECT_EQ(artwork(), "") << url;
    }
    EXPECT_EQ(takeSaid().find("fetch"), std::string::npos) << "not without the user's consent";
    play("song", "file:///one.png");
    queues.runNext(kQueue);
    player.reset();
    EXPECT_EQ(main.run(), 1) << "the result arrives after the end";
}

TEST_F(MprisPlayerTest, WithholdsWhatItsPrivacyForbidsFromTheFirstStateOn) {
    files.put("/cover.png", "cover");
    settings.set({.privacyOf = {{"mpv", Privacy::controls}, {"mpv.own", Privacy::player}}});
    startSong("file:///cover.png");
    read();
    EXPECT_EQ(files.reads, 0) << "not even read";
    players[0].identity = "Spotify";
    announce();
    EXPECT_FALSE(player->snapshot().state.playerType);
    EXPECT_EQ(track(), (XPCTrack{.title = "", .artist = "", .duration = 100}));
    EXPECT_FALSE(log.contains("players: following org.mpris.MediaPlayer2.mpv"));
    EXPECT_TRUE(player->perform(QuorvaneAction::nextTrack));
    players[0].busName += ".own";
    announce();
    EXPECT_EQ(track(), (XPCTrack{.title = "Spotify", .artist = "", .duration = 100}));
    changes = 0;
    settings.set({});
    EXPECT_EQ(changes, 1);
    read();
    EXPECT_EQ(track().title + ' ' + artwork(), "song cover");
    settings.set({.privacy = Privacy::player});
    EXPECT_EQ(track().title + ' ' + artwork(), "Spotify ");
}

TEST_F(MprisPlayerTest, DecodesArtworkInTheURL) {
    const std::pair<std::string, std::string> rows[] = {
        {"data:image/png;base64,cGljdHVyZQ==", "picture"},
        {"data:;base64,cGljdHVyZQ%3D%3D", "picture"},
        {"data:image/png,%70icture", "picture"},
        {"data:image/png;base64,cGljdHVyZ", ""},
        {"data:image/png;base64,", ""},
        {"data:,%7", ""},
        {"data:picture", ""},
        {"data:," + std::string(kLargestArtwork + 1, 'x'), ""},
        {"data:;base64," + std::string(kLargestArtwork / 3 * 4 + 8, 'x'), ""},
    };
    startSong();
    for (const auto& [url, picture] : rows) {
        play("song", url);
        EXPECT_EQ(artwork(), "") << "decoded on the queue";
        read();
        EXPECT_EQ(artwork(), picture) << url.substr(0, 60);
        refresh();
        EXPECT_EQ(queues.waiting(kQueue), 0u) << "decoded once";
    }
    EXPECT_TRUE(log.contains("players: no artwork: the data: URL has no data"));
}

TEST_F(MprisPlayerTest, FetchesArtworkWhenTheUserWantsIt) {
    const auto answer = [this](FetchAnswer with) {
        std::exchange(fetched, nullptr)(std::move(with));
    };
    const auto picture = [](std::string_view text) { return FetchAnswer{copyOf(bytesOf(text))}; };
    settings.set({.fetchArtwork = true});
    startSong("https://a/1");
    refresh();
    EXPECT_EQ(takeSaid(), "refresh fetch https://a/1 refresh ") << "one request";
    changes = 0;
    answer(picture("one"));
    EXPECT_EQ(artwork(), "one");
    EXPECT_EQ(changes, 1);
    play("song 2", "https://a/2");
    EXPECT_EQ(artwork(), "");
    play("song 3", "http://a/3");
    for (const char* url : {"https://b/3", "https://c/3", "https://d/3"})
        answer(FetchRedirect{url});
    EXPECT_EQ(takeSaid(),
              "refresh fetch https://a/2 refresh fetch http://a/3 fetch https://b/3 "
              "fetch https://c/3 fetch https://d/3 ");
    answer(picture("three"));
    EXPECT_EQ(artwork(), "three");
    play("song 1 again", "https://a/1");
    EXPECT_EQ(artwork(), "one") << "without a request";
    takeSaid();

    const std::string longest = "https://a/" + std::string(kLargestArtwork, 'x');
    for (const FetchAnswer& refused :
         {FetchAnswer{FetchFailure{"no"}}, FetchAnswer{FetchRedirect{"file:///one.png"}},
          FetchAnswer{FetchRedirect{longest}}}) {
        play("song 4", "https://a/4");
        answer(refused);
        EXPECT_FALSE(fetched);
        refresh();
        EXPECT_EQ(takeSaid(), "refresh fetch https://a/4 refresh ") << "not again and again";
        EXPECT_EQ(artwork(), "");
        play("song 1", "https://a/1");
        takeSaid();
    }
    play("song 5", "https://a/5");
    for (int i = 0; i < 4; ++i) answer(FetchRedirect{"https://a/5"});
    EXPECT_FALSE(fetched) << "too many redirects";

    // The kept bytes are limited.
    play("song 6", "https://a/6");
    answer(picture(std::string(kLargestArtwork, '6')));
    EXPECT_EQ(artwork().size(), kLargestArtwork);
    play("song 1", "https://a/1");
    EXPECT_EQ(artwork(), "");
    settings.set({});
    EXPECT_FALSE(fetched) << "the user has withdrawn the consent";
    EXPECT_EQ(artwork(), "");
}

TEST_F(MprisPlayerTest, PausesAtALockAndResumesOnlyWhatNothingElseTouched) {
    add("mpv", "Playing", "song");
    const LockPauser pauser = makePauser();
    lock(true);
    EXPECT_EQ(watches, 0) << "nothing is watched by default";
    settings.set({.pauseOnLock = true, .resumeOnUnlock = true});
    // The player's reports during the lock, before the unlock.
    const std::pair<std::vector<const char*>, const char*> rows[] = {
        {{}, "Pause Play "},
        {{"Paused"}, "Pause Play "},
        {{"Playing", "Paused"}, "Pause Play "},
        {{"Paused", "Playing"}, "Pause "},
        {{"Paused", "Playing", "Paused"}, "Pause "},
        {{"Paused", "Stopped"}, "Pause "},
    };
    for (const auto& [reports, expected] : rows) {
        change("PlaybackStatus", text("Playing"));
        lock(true);
        for (const char* report : reports) change("PlaybackStatus", text(report));
        lock(false);
        lock(false);
        EXPECT_EQ(takeSaid(), expected) << testing::PrintToString(reports);
    }
    change("PlaybackStatus", text("Playing"));
    lock(true);
    play("next song");
    lock(false);
    EXPECT_EQ(takeSaid(), "Pause ") << "another track";
    settings.set({.pauseOnLock = true});
    lock(true);
    lock(false);
    EXPECT_EQ(takeSaid(), "Pause ") << "not to be resumed";
    settings.set({.pauseOnLock = true, .ignored = {"mpv"}});
    lock(true);
    settings.set({.quietWake = true});
    lock(true);
    change("CanPause", {false});
    wakes.call();
    change("CanPause", {true});
    EXPECT_EQ(takeSaid(), "");
    wakes.call();
    lock(false);
    wakes.call();
    EXPECT_EQ(takeSaid(), "Pause ") << "once, while locked";
    settings.set({});
    EXPECT_EQ(watches, 1);
    EXPECT_EQ(notices.observerCount(), 0u);
}

TEST_F(MprisPlayerTest, CommandsTheChosenPlayer) {
    startSong();
    takeSaid();
    for (const auto action :
         {QuorvaneAction::nextTrack, QuorvaneAction::activatePlayer, QuorvaneAction::toggleMute})
        EXPECT_TRUE(player->perform(action));
    EXPECT_TRUE(player->setVolume(30));
    change("Volume", {0.0});
    player->perform(QuorvaneAction::toggleMute);
    change("CanGoNext", {false});
    EXPECT_FALSE(player->perform(QuorvaneAction::nextTrack));
    EXPECT_EQ(takeSaid(), "Next Raise Volume=0% Volume=30% Volume=80% ");
}

TEST_F(MprisPlayerTest, UsesTheSoundServerOnlyForAPlayerWithoutAVolume) {
    startSong();
    EXPECT_FALSE(onSound);
    players[0].processID = 7;
    players[0].properties.erase("Volume");
    announce();
    ASSERT_TRUE(onSound);
    EXPECT_FALSE(player->setVolume(30)) << "no server yet";
    changes = 0;
    onSound({{{.number = 3, .processID = 7, .isPlaying = true, .volume = 0.4}}, 0.9});
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(player->snapshot().state.volume, 40);
    EXPECT_FALSE(player->snapshot().state.isMuted);
    takeSaid();
    EXPECT_TRUE(player->setVolume(30));
    EXPECT_EQ(takeSaid(), "sound=30% ");
    onSound({});
    EXPECT_FALSE(player->setVolume(30)) << "the server has gone";
    announce();
    EXPECT_EQ(soundObservations, 1);
    play("next song");
    EXPECT_EQ(soundObservations, 2) << "retried with the next track";
    change("Volume", {0.5});
    EXPECT_EQ(soundObservationsEnded, 2);
    EXPECT_EQ(player->snapshot().state.volume, 50);
}

}  // namespace
}  // namespace quorvane

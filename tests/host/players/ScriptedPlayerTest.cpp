#include "host/players/ScriptedPlayer.hpp"

#include <gtest/gtest.h>

#include "tests/support/ManualClock.hpp"
#include "tests/support/MemoryFiles.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

std::expected<Script, std::string> read(std::string_view text, MemoryFiles files = {}) {
    files.put("demo/set.json", text);
    return readScript("demo/set.json", files.table());
}

class ScriptedPlayerTest : public testing::Test {
protected:
    ScriptedPlayerTest() {
        for (const char* title : {"one", "two", "three"})
            script.tracks.push_back({.track = {.title = title, .artist = "A", .duration = 100}});
        script.capabilities = {.canLove = true, .canDislike = true, .hasThreeStateRepeat = true};
    }

    void start() {
        player.emplace(script, clock.clock());
        player->onChanged = [this] { ++changes; };
    }
    QuorvanePlayerState state() const { return player->snapshot().state; }
    // The track and its position.
    std::pair<std::string, double> place() {
        return {state().track->title, player->snapshot().anchor.secondsAt(clock.clock().now())};
    }
    std::pair<std::string, double> placeAfter(Duration time) {
        clock.advance(time);
        return place();
    }
    bool act(QuorvaneAction action) { return player->perform(action); }

    using Place = std::pair<std::string, double>;
    ManualClock clock;
    Script script;
    std::optional<ScriptedPlayer> player;
    int changes = 0;
};

TEST_F(ScriptedPlayerTest, IsAsItsScriptSays) {
    MemoryFiles files;
    files.put("demo/art/cover.png", "picture");
    script = read(R"({
        "player": "other", "capabilities": {"canRate": true, "hasThreeStateRepeat": true},
        "volume": 64.0, "repeat": "one", "shuffle": true, "autoplay": false,
        "startTrack": 1, "startPosition": 2.5,
        "tracks": [
            {"title": "One", "artist": "A", "duration": 214, "album": "B", "albumArtist": "C",
             "artwork": "art/cover.png", "isLoved": true, "isDisliked": false, "rating": 80,
             "motionArtworkLoopID": "m"},
            {"title": "Two", "artist": "", "isLiveStream": true, "isAdvertisement": true}]})",
                  std::move(files))
                 .value();
    start();
    EXPECT_EQ(place(), Place("Two", 2.5));
    QuorvanePlayerState expected{
        .track =
            XPCTrack{.title = "Two", .artist = "", .isAdvertisement = true, .isLiveStream = true},
        .playerState = XPCPlayerState::paused,
        .capabilities = {.canRate = true, .hasThreeStateRepeat = true},
        .volume = 64,
        .shuffleEnabled = true,
        .repeatMode = XPCRepeatMode::one};
    EXPECT_EQ(state(), expected);
    act(QuorvaneAction::nextTrack);  // the only other one
    expected.track = XPCTrack{.title = "One",
                              .artist = "A",
                              .album = "B",
                              .albumArtist = "C",
                              .duration = 214,
                              .artworkData = SharedBytes{copyOf(bytesOf("picture"))},
                              .isLoved = true,
                              .motionArtworkLoopID = "m"};
    expected.rating = 80;
    expected.isLoved = true;
    expected.isDisliked = false;
    EXPECT_EQ(state(), expected);
}

TEST_F(ScriptedPlayerTest, PlaysThroughAndStops) {
    script.startPosition = 40;
    start();
    EXPECT_EQ(state().playerState, XPCPlayerState::playing);
    EXPECT_EQ(placeAfter(59s), Place("one", 99));
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(placeAfter(2s), Place("two", 1));
    EXPECT_EQ(changes, 1);
    clock.advance(200s);
    EXPECT_EQ(state().playerState, XPCPlayerState::stopped);
    EXPECT_EQ(place(), Place("one", 0));
    for (int i = 0; i < 3; ++i) {
        act(QuorvaneAction::playPause);
        clock.advance(3s);
    }
    EXPECT_EQ(placeAfter(95s), Place("two", 1)) << "a pause postpones the end of the track";
    script.startPosition = 250;
    start();
    EXPECT_EQ(place(), Place("one", 100)) << "limited to the track";
}

TEST_F(ScriptedPlayerTest, ObeysCommands) {
    using enum QuorvaneAction;
    script.repeatMode = XPCRepeatMode::one;
    script.startTrack = 2;
    start();
    EXPECT_EQ(placeAfter(101s), Place("three", 1));
    act(nextTrack);
    EXPECT_EQ(place(), Place("one", 0)) << "the command advances although one track repeats";
    for (const auto mode : {XPCRepeatMode::off, XPCRepeatMode::all, XPCRepeatMode::one}) {
        act(toggleRepeat);
        EXPECT_EQ(state().repeatMode, mode);
    }
    act(nextTrack);
    clock.advance(4s);
    act(previousTrack);
    EXPECT_EQ(place(), Place("two", 0)) << "after three seconds, the track restarts";
    clock.advance(3s);
    act(previousTrack);
    act(previousTrack);
    EXPECT_EQ(place(), Place("one", 0));

    act(increaseVolume);
    EXPECT_EQ(state().volume, 55);
    player->setVolume(250);
    EXPECT_EQ(state().volume, 100);
    act(toggleMute);
    EXPECT_TRUE(state().isMuted);
    EXPECT_FALSE(act(increaseRating)) << "not among its capabilities";
    act(toggleDislike);
    act(toggleLove);
    act(playPause);
    act(nextTrack);
    EXPECT_EQ(state().isLoved, std::nullopt) << "stored per track";
    EXPECT_EQ(state().playerState, XPCPlayerState::paused) << "a change of tracks keeps the state";
    act(previousTrack);
    EXPECT_EQ(state().isLoved, true);
    EXPECT_EQ(state().isDisliked, false) << "a track cannot be loved and disliked";
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

TEST(Script, NamesFileKeyAndReason) {
    const auto withTrack = [](std::string_view more) {
        return R"({"tracks":[{"title":"T","artist":"A","duration":10},{"title":"T",)" +
               std::string{more} + "}]}";
    };
    const auto withRoot = [](std::string_view more) {
        return R"({"tracks":[{"title":"T","artist":"A","duration":10}],)" + std::string{more} + "}";
    };
    const std::pair<std::string, std::string> rows[] = {
        {std::string((4u << 20) + 1, ' '), "File too large"},
        {"\n", "line 2: not JSON: The document is empty."},
        {std::string{"{}\0x", 4}, "not JSON: it contains bytes that are not text"},
        {"{}", "tracks: must be a list of at least one track"},
        {R"({"tracks":[7]})", "tracks[0]: must be an object"},
        {withTrack(R"("duration":1)"), "tracks[1].artist: is missing"},
        {withTrack(R"("artist":"A")"),
         "tracks[1].duration: is missing, and the track is not a live stream"},
        {withTrack(R"("artist":"A","duration":0)"),
         "tracks[1].duration: must be a number from 0.1 to 604800"},
        {withTrack(R"("artist":"A","duration":1,"artwork":"no.png")"),
         "tracks[1].artwork: cannot be read: demo/no.png: No such file or directory"},
        {withRoot(R"("volume":64.5)"), "volume: must be a whole number from 0 to 100"},
        {withRoot(R"("repeat":"twice")"), R"(repeat: must be one of "off", "one", "all")"},
        {withRoot(R"("capabilities":{"canFly":true})"), "capabilities.canFly: is not a known key"},
        {withRoot(R"("startTrack":1)"), "startTrack: there are only 1 tracks, counted from 0"},
    };
    for (const auto& [text, reason] : rows) {
        const auto script = read(text);
        EXPECT_EQ(script ? "" : script.error(), "demo/set.json: " + reason);
    }
}

}  // namespace
}  // namespace quorvane

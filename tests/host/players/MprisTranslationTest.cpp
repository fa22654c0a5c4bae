#include "host/players/MprisTranslation.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "host/players/MprisCommand.hpp"
#include "host/players/PlayerURL.hpp"

namespace quorvane {
namespace {

PropertyValue text(std::string value) { return {std::move(value)}; }

MediaPlayer mpv(PropertyDictionary metadata = {{"xesam:title", text("Title")}}) {
    return {.busName = "org.mpris.MediaPlayer2.mpv",
            .identity = "mpv player",
            .properties = {{"PlaybackStatus", text("Playing")},
                           {"Metadata", {std::move(metadata)}},
                           {"Volume", {0.5}}}};
}

TEST(MprisTranslation, TranslatesTracks) {
    using Track = XPCTrack;
    const Track live{.title = "T", .artist = "", .isLiveStream = true};
    const PropertyValue radio = text("https://r/x");
    const PropertyValue list{PropertyArray{text("One"), text(""), text("Two")}};
    const std::string longest(4095, 'x');
    const std::pair<PropertyDictionary, std::optional<Track>> rows[] = {
        {{{"mpris:trackid", text("/org/mpris/MediaPlayer2/TrackList/NoTrack")}}, {}},
        {{{"xesam:artist", list}}, Track{"T", "One, Two"}},
        {{{"xesam:artist", text("A")}, {"xesam:album", text("B")}}, Track{"T", "A", "B"}},
        {{{"xesam:albumArtist", list}}, Track{"T", "", {}, "One, Two"}},
        {{{"xesam:album", text(longest + "\u00e9\u00e9")}}, Track{"T", "", longest}},
        {{{"xesam:artist", {true}}, {"mpris:length", text("7")}}, Track{"T", ""}},
        {{{"mpris:length", {std::int64_t{60'029'388}}}},
         Track{.title = "T", .artist = "", .duration = 60.029388}},
        {{{"mpris:length", {-5.0e6}}}, Track{"T", ""}},
        {{{"xesam:url", radio}}, live},
        {{{"xesam:url", radio}, {"mpris:length", {std::int64_t{0}}}}, live},
        {{{"xesam:url", radio}, {"mpris:length", {std::int64_t{INT64_MAX}}}}, live},
        {{{"xesam:url", radio}, {"mpris:length", {9.5e6}}},
         Track{.title = "T", .artist = "", .duration = 9.5}},
    };
    for (auto [metadata, expected] : rows) {
        SCOPED_TRACE(metadata.begin()->first);
        metadata["xesam:title"] = text("T");
        EXPECT_EQ(playerStateOf(mpv(metadata)).track, expected);
    }
}

TEST(MprisTranslation, NamesATrackThatHasNoTitle) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"", "file:///m/My%20song.one.flac", "My song.one"},
        {"My song.flac", "file:///m/My%20song.flac", "My song"},
        {"", "file:///m/%ff.flac", "mpv player"},  // no text
        {"live?token=s3cret", "https://radio.example.org/live?token=s3cret", "radio.example.org"},
        {"s 3", "https://radio.example.org/live/s%203", "radio.example.org"},
        {"https://x/?token=s3cret", "", "mpv player"},
        {"", "http://user:s3cret@[::1]:8000?a@b", "[::1]"},
        {"", "rtsp://host:554/x@y", "host"},
        {"", "https://?token=s3cret", "mpv player"},
        {"Title", "https://radio.example.org/live?token=s3cret", "Title"},
    };
    for (const auto& [title, url, shown] : rows) {
        const auto player = mpv({{"xesam:title", text(title)}, {"xesam:url", text(url)}});
        EXPECT_EQ(playerStateOf(player).track.value_or(XPCTrack{}).title, shown) << title << url;
    }
    MediaPlayer player = mpv({});
    player.busName += ".instance7";
    player.identity = "";
    EXPECT_EQ(playerStateOf(player).track->title, "mpv");
    player.properties["PlaybackStatus"] = text("Stopped");
    EXPECT_FALSE(playerStateOf(player).track);
}

TEST(MprisTranslation, TranslatesThePlayer) {
    MediaPlayer player = mpv();
    EXPECT_FALSE(playerStateOf(player).shuffleEnabled);
    player.properties["Shuffle"] = {true};
    player.properties["LoopStatus"] = text("Track");
    const auto state = playerStateOf(player);
    EXPECT_EQ(state.playerState, XPCPlayerState::playing);
    EXPECT_EQ(state.capabilities, XPCPlayerCapabilities{.hasThreeStateRepeat = true});
    EXPECT_EQ(state.repeatMode, XPCRepeatMode::one);
    EXPECT_TRUE(state.shuffleEnabled);
    player.properties["PlaybackStatus"] = text("Dreaming");
    player.properties["LoopStatus"] = text("Perhaps");
    EXPECT_EQ(playerStateOf(player).playerState, XPCPlayerState::unknown);
    EXPECT_EQ(playerStateOf(player).repeatMode, std::nullopt);
}

TEST(MprisTranslation, KnowsSpotifyAndItsAdvertisements) {
    MediaPlayer player = mpv({{"mpris:trackid", text("/com/spotify/ad/1")}});
    for (const char* other : {"mpv", "spotifyd"}) {
        player.busName = std::string{"org.mpris.MediaPlayer2."} + other;
        EXPECT_EQ(playerStateOf(player).playerType, std::nullopt);
        EXPECT_FALSE(playerStateOf(player).track->isAdvertisement);
    }
    player.busName = "org.mpris.MediaPlayer2.spotify.instance3";
    EXPECT_EQ(playerStateOf(player).playerType, XPCPlayerType::spotify);
    EXPECT_TRUE(playerStateOf(player).track->isAdvertisement);
}

TEST(MprisTranslation, TellsTracksApart) {
    const auto key = [](const char* title, const char* number) {
        return trackKeyOf(mpv({{"xesam:title", text(title)}, {"mpris:trackid", text(number)}}));
    };
    EXPECT_NE(key("T", "/1"), key("T", "/2"));
    EXPECT_NE(key("T", "/1"), key("U", "/1"));
}

TEST(PlayerVolume, IsThePlayersElseItsStreamsElseTheSystems) {
    using enum PlayerVolume::Owner;
    const SoundStream other{.number = 9, .processID = 1, .application = "x", .isPlaying = true};
    const SoundStream own{.number = 3, .processID = 7, .isPlaying = true, .volume = 0.3};
    const SoundStream corked{.number = 5, .processID = 7, .volume = 0.5};
    const SoundStream helper{.number = 4, .processID = 8, .application = "MPV", .volume = 0.4};
    const PropertyDictionary fixed{{"Volume", {0.4}}, {"CanControl", {false}}};
    const std::tuple<const char*, PropertyDictionary, SoundLevels, PlayerVolume> rows[] = {
        {"its own", {{"Volume", {0.4}}}, {{own}, 0.6}, {player, 0.4}},
        {"too loud", {{"Volume", {1.3}}}, {}, {player, 1}},
        {"no number", {{"Volume", {std::nan("")}}}, {}, {none, 1}},
        {"one that cannot be set", fixed, {{}, 0.6}, {system, 0.6}},
        {"neither can the server", fixed, {}, {none, 0.4}},
        {"a stream", {}, {{other, own, corked}, 0.6}, {stream, 0.3, 3}},
        {"a helper's stream", {}, {{other, helper}, 0.6}, {stream, 0.4, 4}},
        {"no stream of it", {}, {{other}, 0.6}, {system, 0.6}},
    };
    for (const auto& [name, properties, sound, expected] : rows) {
        const MediaPlayer mpv{
            .busName = "", .identity = "mpv", .processID = 7, .properties = properties};
        EXPECT_EQ(PlayerVolume::of(mpv, sound), expected) << name;
    }
}

TEST(MprisCommand, ActionsBecomeCallsAndProperties) {
    using enum QuorvaneAction;
    using Command = std::optional<MprisCommand>;
    const auto set = [](const char* property, PropertyValue value) {
        return MprisCommand{MprisSet{property, std::move(value)}};
    };
    const std::tuple<const char*, QuorvaneAction, Command> rows[] = {
        {"", playPause, MprisCall{"PlayPause"}},
        {"CanPause", playPause, {}},
        {"", nextTrack, MprisCall{"Next"}},
        {"CanGoNext", nextTrack, {}},
        {"", previousTrack, MprisCall{"Previous"}},
        {"CanGoPrevious", previousTrack, {}},
        {"", increaseVolume, set("Volume", {0.55})},
        {"", decreaseVolume, set("Volume", {0.45})},
        {"", toggleMute, set("Volume", {0.0})},
        {"", toggleShuffle, set("Shuffle", {true})},
        {"", toggleRepeat, set("LoopStatus", text("Playlist"))},
        {"LoopStatus", toggleRepeat, {}},
        {"CanControl", toggleRepeat, {}},
        {"CanControl", toggleShuffle, {}},
        {"CanControl", nextTrack, {}},
        {"CanControl", activatePlayer, MprisCall{"Raise"}},
        {"", toggleLove, {}},
    };
    const PlayerVolume half{PlayerVolume::Owner::player, 0.5};
    for (const auto& [refused, action, expected] : rows) {
        MediaPlayer player = mpv();
        player.properties["Shuffle"] = {false};
        player.properties["LoopStatus"] = text("None");
        player.properties[refused] = {false};
        EXPECT_EQ(commandFor(action, player, half, 0.7), expected) << refused << actionName(action);
    }
    EXPECT_EQ(commandFor(toggleShuffle, mpv(), half, 1), std::nullopt);

    const PlayerVolume stream{PlayerVolume::Owner::stream, 0, 3};
    EXPECT_EQ(commandFor(toggleMute, mpv(), stream, 0.7), MprisCommand(SetSoundVolume{3, 0.7}));
    EXPECT_EQ(volumeCommand(255, {PlayerVolume::Owner::system, 1}),
              MprisCommand(SetSoundVolume{{}, 1.0}));
    EXPECT_EQ(volumeCommand(-1, half), set("Volume", {0.0}));
    EXPECT_EQ(volumeCommand(5, {}), std::nullopt);
}

TEST(PlayerURL, OnlyFilesOfThisMachine) {
    const std::pair<const char*, const char*> rows[] = {
        {"file:///a%2Fb%20%C3%A9?x#y", "/a/b \u00e9"},
        {"file://localhost/a", "/a"},
        {"file:/a%3Fb%23", "/a?b#"},
    };
    for (const auto& [url, path] : rows) EXPECT_EQ(localFile(url), path) << url;
    for (const char* url : {"file://other/a", "file://localhostile/a", "file:a", "file:///a%4",
                            "file:///a%zz", "file:///a%+1", "file:///a%00b", "http://localhost/a"})
        EXPECT_EQ(localFile(url), std::nullopt) << url;
    EXPECT_EQ(localFile("/" + std::string(20'000, 'a')), std::nullopt) << "no path is so long";
}

}  // namespace
}  // namespace quorvane

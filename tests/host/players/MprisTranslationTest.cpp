#include "host/players/MprisTranslation.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "host/players/FileURL.hpp"
#include "host/players/MprisCommand.hpp"

namespace quorvane {
namespace {

MediaPlayer mpv(PropertyDictionary metadata = {{"xesam:title", {std::string{"Title"}}}}) {
    return {.busName = "org.mpris.MediaPlayer2.mpv",
            .identity = "mpv",
            .properties = {{"PlaybackStatus", {std::string{"Playing"}}},
                           {"Metadata", {std::move(metadata)}},
                           {"Volume", {0.5}},
                           {"CanControl", {true}}}};
}

PropertyValue text(std::string value) { return {std::move(value)}; }

TEST(MprisTranslation, TranslatesTracks) {
    const PropertyValue radio = text("https://r/x");
    const PropertyValue list{PropertyArray{text("One"), text(""), text("Two")}};
    struct Row {
        const char* name;
        PropertyDictionary metadata;  // in addition to a title
        std::optional<XPCTrack> expected;
    };
    const Row rows[] = {
        {"no track", {{"mpris:trackid", text("/org/mpris/MediaPlayer2/TrackList/NoTrack")}}, {}},
        {"a list of artists", {{"xesam:artist", list}}, XPCTrack{"T", "One, Two"}},
        {"an artist as a text", {{"xesam:artist", text("A")}}, XPCTrack{"T", "A"}},
        {"an album",
         {{"xesam:album", text("B")}, {"xesam:albumArtist", list}},
         XPCTrack{"T", "", "B", "One, Two"}},
        {"a text beyond the limit, cut before a character of two bytes",
         {{"xesam:album", text(std::string(4095, 'x') + "\u00e9\u00e9")}},
         XPCTrack{"T", "", std::string(4095, 'x')}},
        {"values of wrong types",
         {{"xesam:artist", {true}}, {"xesam:album", {1.0}}, {"mpris:length", text("7")}},
         XPCTrack{"T", ""}},
        {"a length",
         {{"mpris:length", {std::int64_t{60'029'388}}}},
         XPCTrack{.title = "T", .artist = "", .duration = 60.029388}},
        {"a length of the wrong sign", {{"mpris:length", {-5.0e6}}}, XPCTrack{"T", ""}},
        {"a radio station",
         {{"xesam:url", radio}},
         XPCTrack{.title = "T", .artist = "", .isLiveStream = true}},
        {"a stream of absurd length",
         {{"xesam:url", radio}, {"mpris:length", {std::int64_t{INT64_MAX}}}},
         XPCTrack{.title = "T", .artist = "", .isLiveStream = true}},
        {"a song on the network, its length a real number",
         {{"xesam:url", radio}, {"mpris:length", {9.5e6}}},
         XPCTrack{.title = "T", .artist = "", .duration = 9.5}},
    };
    for (const Row& row : rows) {
        PropertyDictionary metadata = row.metadata;
        metadata["xesam:title"] = text("T");
        EXPECT_EQ(playerStateOf(mpv(metadata)).track, row.expected) << row.name;
    }
}

TEST(MprisTranslation, NamesATrackThatHasNoTitle) {
    struct Row {
        const char* title;
        const char* url;
        const char* shown;
    };
    const Row rows[] = {
        {"", "file:///m/My%20song.one.flac", "My song.one"},
        {"My song.flac", "file:///m/My%20song.flac", "My song"},
        {"", "file:///m/%ff.flac", "mpv player"},  // no text
        {"", "https://radio.example.org/live?token=s3cret", "radio.example.org"},
        {"live?token=s3cret", "https://radio.example.org/live?token=s3cret", "radio.example.org"},
        {"s 3", "https://radio.example.org/live/s%203", "radio.example.org"},
        {"https://x/?token=s3cret", "", "mpv player"},
        {"", "http://user:s3cret@[::1]:8000?a@b", "[::1]"},
        {"", "rtsp://host:554/x@y", "host"},
        {"", "https://?token=s3cret", "mpv player"},
        {"", "", "mpv player"},
        {"Title", "https://radio.example.org/live?token=s3cret", "Title"},
    };
    for (const Row& row : rows) {
        MediaPlayer player = mpv({{"xesam:title", text(row.title)}, {"xesam:url", text(row.url)}});
        player.identity = "mpv player";
        ASSERT_TRUE(playerStateOf(player).track) << row.url;
        EXPECT_EQ(playerStateOf(player).track->title, row.shown) << row.title << ' ' << row.url;
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
    player.properties["Shuffle"] = {true};
    player.properties["LoopStatus"] = text("Track");
    auto state = playerStateOf(player);
    EXPECT_EQ(state.playerState, XPCPlayerState::playing);
    EXPECT_EQ(state.playerType, std::nullopt);
    EXPECT_EQ(state.capabilities, XPCPlayerCapabilities{.hasThreeStateRepeat = true});
    EXPECT_EQ(state.repeatMode, XPCRepeatMode::one);
    EXPECT_TRUE(state.shuffleEnabled);

    player.properties["PlaybackStatus"] = text("Dreaming");
    player.properties["LoopStatus"] = text("Perhaps");
    state = playerStateOf(player);
    EXPECT_EQ(state.playerState, XPCPlayerState::unknown);
    EXPECT_EQ(state.repeatMode, std::nullopt);
}

TEST(MprisTranslation, KnowsSpotifyAndItsAdvertisements) {
    MediaPlayer player =
        mpv({{"xesam:title", text("T")}, {"mpris:trackid", text("/com/spotify/ad/1")}});
    EXPECT_FALSE(playerStateOf(player).track->isAdvertisement);
    player.busName = "org.mpris.MediaPlayer2.spotify.instance3";
    EXPECT_EQ(playerStateOf(player).playerType, XPCPlayerType::spotify);
    EXPECT_TRUE(playerStateOf(player).track->isAdvertisement);
    player.busName = "org.mpris.MediaPlayer2.spotifyd";
    EXPECT_EQ(playerStateOf(player).playerType, std::nullopt);
}

TEST(MprisTranslation, TellsTracksApart) {
    const MediaPlayer one = mpv({{"xesam:title", text("T")}, {"mpris:trackid", text("/1")}});
    const MediaPlayer two = mpv({{"xesam:title", text("T")}, {"mpris:trackid", text("/2")}});
    const MediaPlayer three = mpv({{"xesam:title", text("U")}, {"mpris:trackid", text("/1")}});
    EXPECT_NE(trackKeyOf(one), trackKeyOf(two));
    EXPECT_NE(trackKeyOf(one), trackKeyOf(three));
}

TEST(PlayerVolume, IsThePlayersElseItsStreamsElseTheSystems) {
    using enum PlayerVolume::Owner;
    struct Row {
        const char* name;
        PropertyDictionary properties;
        SoundLevels sound;
        PlayerVolume expected;
    };
    const SoundStream other{.number = 9, .processID = 1, .application = "x", .isPlaying = true};
    const SoundStream own{.number = 3, .processID = 7, .isPlaying = true, .volume = 0.3};
    const SoundStream corked{.number = 5, .processID = 7, .volume = 0.5};
    const SoundStream helper{.number = 4, .processID = 8, .application = "MPV", .volume = 0.4};
    const Row rows[] = {
        {"its own", {{"Volume", {0.4}}}, {{own}, 0.6}, {player, 0.4}},
        {"too loud", {{"Volume", {1.3}}}, {}, {player, 1}},
        {"no number", {{"Volume", {std::nan("")}}}, {}, {none, 1}},
        {"one that cannot be set",
         {{"Volume", {0.4}}, {"CanControl", {false}}},
         {{}, 0.6},
         {system, 0.6}},
        {"neither can the server", {{"Volume", {0.4}}, {"CanControl", {false}}}, {}, {none, 0.4}},
        {"a stream", {}, {{other, own, corked}, 0.6}, {stream, 0.3, 3}},
        {"a helper's stream", {}, {{other, helper}, 0.6}, {stream, 0.4, 4}},
        {"no stream of it", {}, {{other}, 0.6}, {system, 0.6}},
        {"no server", {}, {}, {none, 1}},
    };
    for (const Row& row : rows) {
        MediaPlayer mpv{.busName = "", .identity = "mpv", .processID = 7};
        mpv.properties = row.properties;
        EXPECT_EQ(PlayerVolume::of(mpv, row.sound), row.expected) << row.name;
    }
}

TEST(MprisCommand, ActionsBecomeCallsAndProperties) {
    using enum QuorvaneAction;
    struct Row {
        const char* forbidden;
        QuorvaneAction action;
        std::optional<MprisCommand> expected;
    };
    const auto set = [](const char* property, PropertyValue value) {
        return MprisCommand{MprisSet{property, std::move(value)}};
    };
    const Row rows[] = {
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
        {"CanControl", toggleRepeat, {}},
        {"CanControl", toggleShuffle, {}},
        {"CanControl", nextTrack, {}},
        {"CanControl", activatePlayer, MprisRaise{}},
        {"", toggleLove, {}},
    };
    const PlayerVolume half{PlayerVolume::Owner::player, 0.5};
    for (const auto& [forbidden, action, expected] : rows) {
        MediaPlayer player = mpv();
        player.properties["Shuffle"] = {false};
        player.properties["LoopStatus"] = text("None");
        player.properties[forbidden] = {false};
        EXPECT_EQ(commandFor(action, player, half, 0.7), expected)
            << forbidden << actionName(action);
    }
    for (const auto action : {toggleShuffle, toggleRepeat})
        EXPECT_EQ(commandFor(action, mpv(), half, 1), std::nullopt)
            << "the player has neither property";

    const PlayerVolume stream{PlayerVolume::Owner::stream, 0, 3};
    EXPECT_EQ(commandFor(toggleMute, mpv(), stream, 0.7), MprisCommand(SetSoundVolume{3, 0.7}));
    EXPECT_EQ(volumeCommand(255, {PlayerVolume::Owner::system, 1}),
              MprisCommand(SetSoundVolume{{}, 1.0}));
    EXPECT_EQ(volumeCommand(-1, half), set("Volume", {0.0}));
    EXPECT_EQ(volumeCommand(5, {}), std::nullopt);
}

TEST(FileURL, OnlyFilesOfThisMachine) {
    const std::pair<const char*, std::optional<std::filesystem::path>> rows[] = {
        {"file:///a/b%20c.png", "/a/b c.png"},
        {"file://localhost/a", "/a"},
        {"file:/a", "/a"},
        {"file:///a%2Fb%C3%A9", "/a/b\u00e9"},
        {"file:///a?x#y", "/a"},
        {"file:///a%3Fb%23", "/a?b#"},
        {"file://other/a", {}},
        {"file://localhostile/a", {}},
        {"file:a", {}},
        {"file:///a%4", {}},
        {"file:///a%zz", {}},
        {"file:///a%+1", {}},
        {"file:///a%00b", {}},
        {"http://localhost/a", {}},
        {"/a", {}},
        {"", {}}};
    for (const auto& [url, path] : rows) EXPECT_EQ(localFile(url), path) << url;
}

}  // namespace
}  // namespace quorvane

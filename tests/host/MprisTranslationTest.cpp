#include "host/MprisTranslation.hpp"

#include <gtest/gtest.h>

#include "host/FileURL.hpp"
#include "host/MprisCommand.hpp"

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
PropertyValue texts(std::initializer_list<const char*> values) {
    PropertyArray array;
    for (const char* value : values) array.push_back(text(value));
    return {array};
}

TEST(MprisTranslation, TranslatesATrack) {
    const MediaPlayer player = mpv({{"mpris:trackid", text("/1")},
                                    {"xesam:title", text("Title")},
                                    {"xesam:artist", texts({"One", "", "Two"})},
                                    {"xesam:album", text("Album")},
                                    {"xesam:albumArtist", texts({"Three"})},
                                    {"mpris:length", {std::int64_t{60'029'388}}},
                                    {"mpris:artUrl", text("file:///cover.png")}});
    EXPECT_EQ(playerStateOf(player).track, (XPCTrack{.title = "Title",
                                                     .artist = "One, Two",
                                                     .album = "Album",
                                                     .albumArtist = "Three",
                                                     .duration = 60.029388}));
    EXPECT_EQ(artworkURLOf(player), "file:///cover.png");
}

TEST(MprisTranslation, TakesTracksAsTheyCome) {
    struct Row {
        const char* name;
        PropertyDictionary metadata;
        std::optional<XPCTrack> expected;
    };
    const auto live = [](std::string title) {
        return XPCTrack{.title = std::move(title), .artist = "", .isLiveStream = true};
    };
    const Row rows[] = {
        {"nothing", {}, {}},
        {"no track",
         {{"mpris:trackid", text("/org/mpris/MediaPlayer2/TrackList/NoTrack")},
          {"xesam:title", text("T")}},
         {}},
        {"an artist as a text",
         {{"xesam:title", text("T")}, {"xesam:artist", text("A")}},
         XPCTrack{.title = "T", .artist = "A"}},
        {"values of wrong types",
         {{"xesam:title", text("T")},
          {"xesam:artist", {true}},
          {"xesam:album", {1.0}},
          {"mpris:length", text("7")}},
         XPCTrack{.title = "T", .artist = ""}},
        {"no title, a file",
         {{"xesam:url", text("file:///m/My%20song.flac")}},
         XPCTrack{.title = "My song.flac", .artist = ""}},
        {"a file name that is no text",
         {{"xesam:url", text("file:///m/%ff.flac")}},
         XPCTrack{.title = "file:///m/%ff.flac", .artist = ""}},
        {"a length of the wrong sign",
         {{"xesam:title", text("T")}, {"mpris:length", {-5.0e6}}},
         XPCTrack{.title = "T", .artist = ""}},
        {"a radio station",
         {{"xesam:title", text("R")}, {"xesam:url", text("https://r/x")}},
         live("R")},
        {"a stream of absurd length",
         {{"xesam:title", text("R")},
          {"xesam:url", text("http://r/x")},
          {"mpris:length", {std::int64_t{INT64_MAX}}}},
         live("R")},
        {"a song on the network, its length a real number",
         {{"xesam:title", text("T")},
          {"xesam:url", text("https://r/x")},
          {"mpris:length", {9.5e6}}},
         XPCTrack{.title = "T", .artist = "", .duration = 9.5}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(playerStateOf(mpv(row.metadata)).track, row.expected) << row.name;
}

TEST(MprisTranslation, CutsTextsOfNoReason) {
    std::string title(4095, 'x');
    title += "\u00e9\u00e9\u00e9";
    EXPECT_EQ(playerStateOf(mpv({{"xesam:title", text(title)}})).track->title,
              std::string(4095, 'x'));
}

TEST(MprisTranslation, TranslatesThePlayer) {
    MediaPlayer player = mpv();
    player.properties["Shuffle"] = {true};
    player.properties["LoopStatus"] = text("Track");
    player.properties["Volume"] = {0.496};
    auto state = playerStateOf(player);
    EXPECT_EQ(state.playerState, XPCPlayerState::playing);
    EXPECT_EQ(state.playerType, std::nullopt);
    EXPECT_EQ(state.capabilities, XPCPlayerCapabilities{.hasThreeStateRepeat = true});
    EXPECT_EQ(state.repeatMode, XPCRepeatMode::one);
    EXPECT_TRUE(state.shuffleEnabled);
    EXPECT_EQ(state.volume, 50);
    EXPECT_FALSE(state.isMuted);

    player.properties["Volume"] = {1.3};
    player.properties["PlaybackStatus"] = text("Dreaming");
    player.properties["LoopStatus"] = text("Perhaps");
    state = playerStateOf(player);
    EXPECT_EQ(state.volume, 100);
    EXPECT_EQ(state.playerState, XPCPlayerState::unknown);
    EXPECT_EQ(state.repeatMode, std::nullopt);
    player.properties["Volume"] = {std::numeric_limits<double>::quiet_NaN()};
    EXPECT_EQ(playerStateOf(player).volume, 100) << "a volume that is no number is none";
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
    EXPECT_EQ(trackKeyOf(mpv({})), "");
    EXPECT_TRUE(isProxy({.busName = "org.mpris.MediaPlayer2.playerctld"}));
    EXPECT_FALSE(isProxy(one));
}

TEST(MprisCommand, ActionsBecomeCallsAndProperties) {
    MediaPlayer player = mpv();
    player.properties["Shuffle"] = {false};
    player.properties["LoopStatus"] = text("None");
    const auto set = [](const char* property, PropertyValue value) {
        return MprisCommand{MprisSet{property, std::move(value)}};
    };
    const std::pair<QuorvaneAction, std::optional<MprisCommand>> rows[] = {
        {QuorvaneAction::playPause, MprisCall{"PlayPause"}},
        {QuorvaneAction::nextTrack, MprisCall{"Next"}},
        {QuorvaneAction::previousTrack, MprisCall{"Previous"}},
        {QuorvaneAction::increaseVolume, set("Volume", {0.55})},
        {QuorvaneAction::decreaseVolume, set("Volume", {0.45})},
        {QuorvaneAction::toggleMute, set("Volume", {0.0})},
        {QuorvaneAction::toggleShuffle, set("Shuffle", {true})},
        {QuorvaneAction::toggleRepeat, set("LoopStatus", text("Playlist"))},
        {QuorvaneAction::activatePlayer, MprisRaise{}},
        {QuorvaneAction::toggleLove, std::nullopt},
        {QuorvaneAction::switchPlayer, std::nullopt},
    };
    for (const auto& [action, command] : rows)
        EXPECT_EQ(commandFor(action, player, 0.7), command) << name(action);
    player.properties["Volume"] = {0.0};
    EXPECT_EQ(commandFor(QuorvaneAction::toggleMute, player, 0.7), set("Volume", {0.7}));
    EXPECT_EQ(volumeCommand(255, player), set("Volume", {1.0}));
    EXPECT_EQ(volumeCommand(-1, player), set("Volume", {0.0}));
}

TEST(MprisCommand, LeavesAloneWhatThePlayerDoesNotTake) {
    using enum QuorvaneAction;
    const std::pair<const char*, std::vector<QuorvaneAction>> rows[] = {
        {"CanGoNext", {nextTrack}},
        {"CanGoPrevious", {previousTrack}},
        {"CanPause", {playPause}},
        {"CanControl", {nextTrack, previousTrack, playPause, increaseVolume, toggleMute}}};
    for (const auto& [property, actions] : rows) {
        MediaPlayer player = mpv();
        player.properties[property] = {false};
        for (const auto action : actions)
            EXPECT_EQ(commandFor(action, player, 1), std::nullopt) << property;
    }
    MediaPlayer bare = mpv();
    bare.properties.erase("Volume");
    EXPECT_EQ(volumeCommand(5, bare), std::nullopt);
    for (const auto action : {toggleShuffle, toggleRepeat, toggleMute})
        EXPECT_EQ(commandFor(action, bare, 1), std::nullopt) << name(action);
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

#include "host/players/Script.hpp"

#include <gtest/gtest.h>

#include "tests/support/MemoryFiles.hpp"

namespace quorvane {
namespace {

std::expected<Script, std::string> read(std::string_view text, MemoryFiles files = {}) {
    files.put("demo/set.json", text);
    return readScript("demo/set.json", files.table());
}

constexpr std::string_view kOneTrack = R"("tracks":[{"title":"T","artist":"A","duration":10}])";

TEST(Script, ReadsEverything) {
    MemoryFiles files;
    files.put("demo/art/cover.png", "picture");
    const auto script = read(R"({
        "player": "other", "capabilities": {"canRate": true, "hasThreeStateRepeat": true},
        "volume": 64.0, "repeat": "one", "shuffle": true, "autoplay": false,
        "startTrack": 1, "startPosition": 2.5,
        "tracks": [
            {"title": "One", "artist": "A", "duration": 214, "album": "B", "albumArtist": "C",
             "artwork": "art/cover.png", "isLoved": true, "isDisliked": false, "rating": 80,
             "motionArtworkLoopID": "m"},
            {"title": "Two", "artist": "", "isLiveStream": true, "isAdvertisement": true,
             "artwork": "art/cover.png"}]})",
                             std::move(files));
    ASSERT_TRUE(script) << script.error();
    EXPECT_EQ(script->playerType, std::nullopt);
    EXPECT_EQ(script->capabilities,
              (XPCPlayerCapabilities{.canRate = true, .hasThreeStateRepeat = true}));
    EXPECT_EQ(script->volume, 64);
    EXPECT_EQ(script->repeatMode, XPCRepeatMode::one);
    EXPECT_TRUE(script->shuffleEnabled);
    EXPECT_FALSE(script->autoplay);
    EXPECT_EQ(script->startTrack, 1u);
    EXPECT_EQ(script->startPosition, 2.5);

    const SharedBytes picture{copyOf(bytesOf("picture"))};
    ASSERT_EQ(script->tracks.size(), 2u);
    EXPECT_EQ(script->tracks[0].track, (XPCTrack{.title = "One",
                                                 .artist = "A",
                                                 .album = "B",
                                                 .albumArtist = "C",
                                                 .duration = 214,
                                                 .artworkData = picture,
                                                 .isLoved = true,
                                                 .motionArtworkLoopID = "m"}));
    EXPECT_EQ(script->tracks[0].isDisliked, false);
    EXPECT_EQ(script->tracks[0].rating, 80);
    EXPECT_TRUE(script->tracks[1].track.isLiveStream);
    EXPECT_TRUE(script->tracks[1].track.isAdvertisement);
    // Read once and shared by both tracks.
    EXPECT_EQ(script->tracks[1].track.artworkData->view().data(),
              script->tracks[0].track.artworkData->view().data());
}

TEST(Script, NamesFileKeyAndReason) {
    const auto withTrack = [](std::string_view more) {
        return R"({"tracks":[{"title":"T","artist":"A","duration":10},{)" + std::string{more} +
               "}]}";
    };
    const auto withRoot = [](std::string_view more) {
        return "{" + std::string{more} + "," + std::string{kOneTrack} + "}";
    };
    const std::pair<std::string, std::string> rows[] = {
        {"", "line 1: not JSON: The document is empty."},
        {std::string{"{}\0x", 4}, "not JSON: it contains bytes that are not text"},
        {"{\"a\":\"\xff\"}", "line 1: not JSON: Invalid encoding in string."},
        {std::string(100'000, '['), "line 1: not JSON: Invalid value."},
        {"{}", "tracks: must be a list of at least one track"},
        {R"({"tracks":[7]})", "tracks[0]: must be an object"},
        {withTrack(R"("title":"T","duration":1)"), "tracks[1].artist: is missing"},
        {withTrack(R"("title":"T","artist":"A")"),
         "tracks[1].duration: is missing, and the track is not a live stream"},
        {withTrack(R"("title":"T","artist":"A","duration":0)"),
         "tracks[1].duration: must be a number from 0.1 to 604800"},
        {withTrack(R"("title":"T","artist":"A","duration":1,"isLoved":1)"),
         "tracks[1].isLoved: must be true or false"},
        {withTrack(R"("title":"T","artist":"A","duration":1,"artwork":"no.png")"),
         "tracks[1].artwork: cannot be read: demo/no.png: No such file or directory"},
        {withTrack(R"("title":"T","artist":"A","duration":1,"colour":"red")"),
         "tracks[1].colour: is not a known key"},
        {withTrack(R"("title":"T","artist":"A","duration":1,"title":"U")"),
         "tracks[1].title: is there twice"},
        {withRoot(R"("volume":64.5)"), "volume: must be a whole number from 0 to 100"},
        {withRoot(R"("repeat":"twice")"), R"(repeat: must be one of "off", "one", "all")"},
        {withRoot(R"("capabilities":{"canFly":true})"), "capabilities.canFly: is not a known key"},
        {withRoot(R"("startTrack":1)"), "startTrack: there are only 1 tracks, counted from 0"},
    };
    for (const auto& [text, reason] : rows) {
        const auto script = read(text);
        ASSERT_FALSE(script) << text;
        EXPECT_EQ(script.error(), "demo/set.json: " + reason);
    }
}

TEST(Script, RefusesAFileThatIsTooLarge) {
    MemoryFiles files;
    files.put("x.json", std::string((4u << 20) + 1, ' '));
    EXPECT_EQ(readScript("x.json", files.table()).error(), "x.json: File too large");
}

}  // namespace
}  // namespace quorvane

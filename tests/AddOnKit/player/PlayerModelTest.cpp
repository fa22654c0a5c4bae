#include "AddOnKit/player/PlayerModel.hpp"

#include <gtest/gtest.h>

#include <thread>

#include "tests/support/ManualClock.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using State = QuorvanePlayerState;

SharedBytes cover(std::string_view text) { return SharedBytes{copyOf(bytesOf(text))}; }

// A song of Apple Music, 200 seconds long, playing, at the volume that the model starts with.
State song() {
    XPCTrack track;
    track.title = "Reed";
    track.artist = "Marsh";
    track.album = "Low";
    track.duration = 200;
    State state;
    state.track = track;
    state.playerState = XPCPlayerState::playing;
    state.playerType = XPCPlayerType::appleMusic;
    state.volume = 50;
    return state;
}

// A model whose decoder takes every cover but "broken".
struct Fixture {
    ManualClock clock;
    int decoded = 0;
    PlayerModel model{clock.wallClock(), [this](ByteView bytes) -> ImageRef {
                          ++decoded;
                          if (textOf(bytes) == "broken") return nullptr;
                          return std::make_shared<Image>();
                      }};
    State state = song();  // what the player says; the cases edit it

    WallTime now() { return clock.wallClock()(); }
    // The summary when the model hears the state now; "" for nothing.
    std::string apply() {
        state.timestamp = now();
        const auto change = model.apply(state);
        return change ? change->summary : "";
    }
    std::string apply(XPCPlayerState playerState) {
        state.playerState = playerState;
        return apply();
    }
};

TEST(PlayerModel, SumsUpWhatChangedInItsOrder) {
    Fixture f;
    f.state.track->artworkData = cover("picture");
    f.state.isLoved = true;
    f.state.volume = 64;
    const auto change = f.model.apply(f.state);
    ASSERT_TRUE(change);
    EXPECT_EQ(change->summary,
              "track changed, playing, card visible, artwork 7 B, heart shown, loved, volume 64");
    EXPECT_EQ(change->newTrack, (PlayerModel::TrackText{.title = "Reed", .artist = "Marsh"}));
    EXPECT_EQ(f.model.trackID.get(), "Reed\x1fMarsh\x1fLow");
    EXPECT_EQ(f.model.apply(f.state), std::nullopt);
    f.state.isLoved = false;
    f.state.playerState = XPCPlayerState::paused;
    EXPECT_EQ(f.model.apply(f.state),
              (PlayerModel::Change{.summary = "not playing (paused), not loved", .newTrack = {}}));
    EXPECT_EQ(f.apply(XPCPlayerState::stopped), "card hidden");
    EXPECT_EQ(f.apply(XPCPlayerState::playing), "playing, card visible");
    EXPECT_EQ(f.apply(XPCPlayerState::unknown), "not playing (unknown), card hidden");
    f.state.track.reset();
    f.state.volume = -5;
    EXPECT_EQ(f.apply(), "no track, artwork none, heart hidden (no track), volume 0");
    EXPECT_EQ(f.model.title.get() + f.model.artist.get() + f.model.trackID.get(), "");
    EXPECT_EQ(f.apply(XPCPlayerState::playing), "playing");  // and nothing to show
}

TEST(PlayerModel, ATrackIsTheSameWhenTitleArtistAndAlbumAre) {
    Fixture f;
    EXPECT_EQ(f.apply(XPCPlayerState::paused), "track changed, card visible, heart shown");
    f.state.track->album.reset();
    EXPECT_EQ(f.apply(), "track changed");
    f.state.track->album = "";
    f.state.track->albumArtist = "Others";
    EXPECT_EQ(f.apply(), "");
}

TEST(PlayerModel, SaysWhyThereIsNoHeart) {
    Fixture f;
    f.apply();
    f.state.playerType = XPCPlayerType::spotify;
    EXPECT_EQ(f.apply(), "heart hidden (player spotify)");
    f.state.playerType = XPCPlayerType::appleMusic;
    EXPECT_EQ(f.apply(), "heart shown");
    f.state.track->isAdvertisement = true;
    EXPECT_EQ(f.apply(), "heart hidden (advertisement)");
    f.state.track->isAdvertisement = false;
    f.apply();
    f.state.playerType.reset();
    EXPECT_EQ(f.apply(), "heart hidden (player unknown)");
}

TEST(PlayerModel, CountsAndDecodesEachNewCoverOnce) {
    Fixture f;
    f.apply();
    f.state.track->artworkData = cover("one");
    EXPECT_EQ(f.apply(), "artwork 3 B");
    const ImageRef first = f.model.artwork.get();
    EXPECT_NE(first, nullptr);
    f.state.track->artworkData = cover("one");
    EXPECT_EQ(f.apply(), "");
    EXPECT_EQ(f.model.artwork.get(), first);
    f.state.track->artworkData = cover("broken");
    EXPECT_EQ(f.apply(), "artwork 6 B (undecodable)");
    EXPECT_EQ(f.model.artwork.get(), nullptr);
    f.state.track->artworkData.reset();
    EXPECT_EQ(f.apply(), "artwork none");
    EXPECT_EQ(f.decoded, 2);
}

TEST(PlayerModel, AnEditHoldsAgainstOldNewsForItsGraceTime) {
    Fixture f;
    f.apply();
    f.model.toggleLove();
    f.clock.advance(1499ms);
    EXPECT_EQ(f.apply(), "");
    EXPECT_TRUE(f.model.isLoved.get());
    f.clock.advance(1ms);
    EXPECT_EQ(f.apply(), "not loved");
    f.state.track->isLoved = true;
    EXPECT_EQ(f.apply(), "loved");
    f.state.isLoved = false;  // the state's own word comes before the track's
    EXPECT_EQ(f.apply(), "not loved");

    f.state.volume = 150;
    f.model.setVolume(-3);
    EXPECT_EQ(f.model.volume.get(), 0);
    f.clock.advance(999ms);
    EXPECT_EQ(f.apply(), "");
    f.clock.advance(1ms);
    EXPECT_EQ(f.apply(), "volume 100");

    f.state.volume = 20;
    f.model.beginVolumeDrag();
    f.clock.advance(60s);
    EXPECT_EQ(f.apply(), "");
    f.model.endVolumeDrag();
    f.clock.advance(999ms);
    EXPECT_EQ(f.apply(), "");
    f.clock.advance(1ms);
    EXPECT_EQ(f.apply(), "volume 20");
}

TEST(PlayerModel, ExtrapolatesThePositionWithinALengthThatIsKnown) {
    Fixture f;
    f.state.playerPosition = 195;
    f.apply();
    EXPECT_DOUBLE_EQ(f.model.position(f.now() + 2500ms), 197.5);
    EXPECT_DOUBLE_EQ(f.model.position(f.now() + 1h), 200);
    EXPECT_DOUBLE_EQ(f.model.position(kDistantPast), 195);
    f.clock.advance(2s);
    f.model.togglePlayPause();
    EXPECT_FALSE(f.model.isPlaying.get());
    f.clock.advance(30s);
    EXPECT_DOUBLE_EQ(f.model.position(f.now()), 197);
    f.model.togglePlayPause();
    EXPECT_DOUBLE_EQ(f.model.position(f.now() + 1s), 198);

    f.state.playerPosition = -4;
    for (const std::optional<double> none : {std::optional<double>{}, {0.0}, {-1.0}}) {
        f.state.track->duration = none;
        EXPECT_EQ(f.apply(), "");
        EXPECT_EQ(f.model.duration.get(), std::nullopt);
    }
    EXPECT_DOUBLE_EQ(f.model.position(f.now()), 0);
    EXPECT_DOUBLE_EQ(f.model.position(f.now() + 1h), 3596);
    f.state = song();
    f.state.track->isLiveStream = true;
    f.apply();
    EXPECT_TRUE(f.model.isLiveStream.get());
    EXPECT_EQ(f.model.duration.get(), std::nullopt);

    f.state.playerPosition = 5;
    f.state.timestamp = WallTime{-9'200'000'000s};  // dates as far apart as dates can be
    f.model.apply(f.state);
    EXPECT_DOUBLE_EQ(f.model.position(WallTime{9'200'000'000s}), 18'400'000'005);
}

TEST(PlayerModel, BelongsToTheThreadThatMadeIt) {
    Fixture f;
    EXPECT_DEATH(std::thread{[&] { f.model.clear(); }}.join(), "");
}

TEST(PlayerModel, FollowsSeeksPausesAndNewTracksButNotJitter) {
    const struct {
        const char* what;
        double reported;  // after two seconds of playing from 0
        double expected;
        std::function<void(State&)> edit;
    } rows[] = {
        {"a little ahead", 3.4, 2, [](State&) {}},
        {"a little behind", 0.6, 2, [](State&) {}},
        {"just too far", 3.5, 3.5, [](State&) {}},
        {"a seek back", 0.5, 0.5, [](State&) {}},
        {"paused", 2.1, 2.1, [](State& s) { s.playerState = XPCPlayerState::paused; }},
        {"another track", 2.1, 2.1, [](State& s) { s.track->title = "Sedge"; }},
        {"a shorter length", 2.1, 1, [](State& s) { s.track->duration = 1; }},
    };
    for (const auto& row : rows) {
        Fixture f;
        f.apply();
        f.clock.advance(2s);
        row.edit(f.state);
        f.state.playerPosition = row.reported;
        f.apply();
        EXPECT_DOUBLE_EQ(f.model.position(f.now()), row.expected) << row.what;
    }
    Fixture f;
    f.apply(XPCPlayerState::paused);
    f.state.playerPosition = 1;
    f.apply(XPCPlayerState::playing);
    EXPECT_DOUBLE_EQ(f.model.position(f.now()), 1) << "from paused to playing";
}

TEST(PlayerModel, ClearsOnceAndKeepsWhatIsNotTheTracks) {
    Fixture f;
    EXPECT_EQ(f.model.clear(), std::nullopt);
    f.state.track->artworkData = cover("one");
    f.state.track->isLoved = true;
    f.state.playerPosition = 9;
    f.state.volume = 70;
    f.apply(XPCPlayerState::stopped);  // a track that is present but hidden
    EXPECT_EQ(f.model.clear(), "cleared (Quorvane unreachable or quit), card hidden");
    EXPECT_EQ(f.model.clear(), std::nullopt);
    EXPECT_EQ(f.model.artwork.get(), nullptr);
    EXPECT_FALSE(f.model.showsHeart.get() || f.model.isLoved.get() || f.model.isVisible.get());
    EXPECT_EQ(f.model.duration.get(), std::nullopt);
    EXPECT_EQ(f.model.position(f.now()), 0);
    EXPECT_EQ(f.model.volume.get(), 70);
    EXPECT_EQ(f.apply(), "track changed, artwork 3 B, heart shown, loved");
}

TEST(PlayerModel, TellsObserversOfRealChangesOnlyAndOfTheCardLast) {
    Fixture f;
    int calls = 0;
    const auto handles = f.model.observe([&] { ++calls; });
    bool everythingStood = false;
    const Handle visible = f.model.isVisible.subscribe([&] {
        everythingStood = f.model.isPlaying.get() && f.model.title.get() == "Reed" &&
                          f.model.artwork.get() != nullptr && f.model.duration.get() == 200;
    });
    f.state.track->artworkData = cover("one");
    f.apply();
    EXPECT_TRUE(everythingStood);
    EXPECT_EQ(calls, 8);  // track, title, artist, artwork, heart, length, two flags
    f.state.playerPosition = 1;
    f.apply();
    f.model.setVolume(50);
    EXPECT_EQ(calls, 8);
    f.model.beginVolumeDrag();
    f.model.setVolume(51);
    f.model.toggleLove();
    f.state.track->isLiveStream = true;  // which also takes the length away
    f.apply();
    EXPECT_EQ(calls, 13);
}

}  // namespace
}  // namespace quorvane

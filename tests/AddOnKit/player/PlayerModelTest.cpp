#include "AddOnKit/player/PlayerModel.hpp"

#include <gtest/gtest.h>

#include <thread>

#include "tests/AddOnKit/player/PlayingModel.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
struct PlayerModelTest : testing::Test, EmptyModel {};

TEST_F(PlayerModelTest, SumsUpWhatChangedInItsOrder) {
    state.track->artworkData = cover("picture");
    state.isLoved = true;
    state.volume = 64;
    const auto change = model.apply(state);
    ASSERT_TRUE(change);
    EXPECT_EQ(change->summary,
              "track changed, playing, card visible, artwork 7 B, heart shown, loved, volume 64");
    EXPECT_EQ(change->newTrack, (PlayerModel::TrackText{.title = "Reed", .artist = "Marsh"}));
    EXPECT_EQ(model.trackID.get(), "Reed\x1fMarsh\x1fLow");
    EXPECT_EQ(model.apply(state), std::nullopt);
    state.isLoved = false;
    state.playerState = XPCPlayerState::paused;
    EXPECT_EQ(model.apply(state),
              (PlayerModel::Change{.summary = "not playing (paused), not loved", .newTrack = {}}));
    EXPECT_EQ(apply(XPCPlayerState::stopped), "card hidden");
    EXPECT_EQ(apply(XPCPlayerState::playing), "playing, card visible");
    EXPECT_EQ(apply(XPCPlayerState::unknown), "not playing (unknown), card hidden");
    state.track.reset();
    state.volume = -5;
    EXPECT_EQ(apply(), "no track, artwork none, heart hidden (no track), volume 0");
    EXPECT_EQ(model.title.get() + model.artist.get() + model.trackID.get(), "");
    EXPECT_EQ(apply(XPCPlayerState::playing), "playing");  // and nothing to show
}

TEST_F(PlayerModelTest, ATrackIsTheSameWhenTitleArtistAndAlbumAre) {
    EXPECT_EQ(apply(XPCPlayerState::paused), "track changed, card visible, heart shown");
    state.track->album.reset();
    EXPECT_EQ(apply(), "track changed");
    state.track->album = "";
    state.track->albumArtist = "Others";
    EXPECT_EQ(apply(), "");
}

TEST_F(PlayerModelTest, ReportsWhyTheHeartIsHidden) {
    apply();
    state.playerType = XPCPlayerType::spotify;
    EXPECT_EQ(apply(), "heart hidden (player spotify)");
    state.playerType = XPCPlayerType::appleMusic;
    EXPECT_EQ(apply(), "heart shown");
    state.track->isAdvertisement = true;
    EXPECT_EQ(apply(), "heart hidden (advertisement)");
    state.track->isAdvertisement = false;
    apply();
    state.playerType.reset();
    EXPECT_EQ(apply(), "heart hidden (player unknown)");
}

TEST_F(PlayerModelTest, DecodesEachNewCoverOnce) {
    apply();
    state.track->artworkData = cover("one");
    EXPECT_EQ(apply(), "artwork 3 B");
    const ImageRef first = model.artwork.get();
    EXPECT_NE(first, nullptr);
    state.track->artworkData = cover("one");
    EXPECT_EQ(apply(), "");
    EXPECT_EQ(model.artwork.get(), first);
    state.track->artworkData = cover("broken");
    EXPECT_EQ(apply(), "artwork 6 B (undecodable)");
    EXPECT_EQ(model.artwork.get(), nullptr);
    state.track->artworkData.reset();
    EXPECT_EQ(apply(), "artwork none");
    EXPECT_EQ(decodes, 2);
}

TEST_F(PlayerModelTest, AnEditOutlastsReportsDuringItsGraceTime) {
    apply();
    model.toggleLove();
    clock.advance(1499ms);
    EXPECT_EQ(apply(), "");
    EXPECT_TRUE(model.isLoved.get());
    clock.advance(1ms);
    EXPECT_EQ(apply(), "not loved");
    state.track->isLoved = true;
    EXPECT_EQ(apply(), "loved");
    state.isLoved = false;  // the state's own word comes before the track's
    EXPECT_EQ(apply(), "not loved");

    state.volume = 150;
    model.setVolume(-3);
    EXPECT_EQ(model.volume.get(), 0);
    clock.advance(999ms);
    EXPECT_EQ(apply(), "");
    clock.advance(1ms);
    EXPECT_EQ(apply(), "volume 100");

    state.volume = 20;
    model.beginVolumeDrag();
    clock.advance(60s);
    EXPECT_EQ(apply(), "");
    model.endVolumeDrag();
    clock.advance(999ms);
    EXPECT_EQ(apply(), "");
    clock.advance(1ms);
    EXPECT_EQ(apply(), "volume 20");
}

TEST_F(PlayerModelTest, ExtrapolatesThePositionWithinALengthThatIsKnown) {
    state.playerPosition = 195;
    apply();
    EXPECT_DOUBLE_EQ(model.position(now() + 2500ms), 197.5);
    EXPECT_DOUBLE_EQ(model.position(now() + 1h), 200);
    EXPECT_DOUBLE_EQ(model.position(kDistantPast), 195);
    clock.advance(2s);
    model.togglePlayPause();
    EXPECT_FALSE(model.isPlaying.get());
    clock.advance(30s);
    EXPECT_DOUBLE_EQ(model.position(now()), 197);
    model.togglePlayPause();
    EXPECT_DOUBLE_EQ(model.position(now() + 1s), 198);

    state.playerPosition = -4;
    for (const std::optional<double> none : {std::optional<double>{}, {0.0}, {-1.0}}) {
        state.track->duration = none;
        EXPECT_EQ(apply(), "");
        EXPECT_EQ(model.duration.get(), std::nullopt);
    }
    EXPECT_DOUBLE_EQ(model.position(now()), 0);
    EXPECT_DOUBLE_EQ(model.position(now() + 1h), 3596);
    state.track->duration = 200;
    state.track->isLiveStream = true;
    apply();
    EXPECT_TRUE(model.isLiveStream.get());
    EXPECT_EQ(model.duration.get(), std::nullopt);

    state.playerPosition = 5;
    state.timestamp = WallTime{-9'200'000'000s};  // dates as far apart as dates can be
    model.apply(state);
    EXPECT_DOUBLE_EQ(model.position(WallTime{9'200'000'000s}), 18'400'000'005);
}

TEST_F(PlayerModelTest, RefusesOtherThreads) {
    EXPECT_DEATH(std::thread{[&] { model.clear(); }}.join(), "");
}

TEST(PlayerModel, FollowsSeeksPausesAndNewTracksButNotJitter) {
    const struct {
        const char* what;
        double reported;  // after two seconds of playing from 0
        double expected;
        std::function<void(QuorvanePlayerState&)> edit;
    } rows[] = {
        {"a little ahead", 3.4, 2, [](auto&) {}},
        {"a little behind", 0.6, 2, [](auto&) {}},
        {"just too far", 3.5, 3.5, [](auto&) {}},
        {"a seek back", 0.5, 0.5, [](auto&) {}},
        {"paused", 2.1, 2.1, [](auto& s) { s.playerState = XPCPlayerState::paused; }},
        {"another track", 2.1, 2.1, [](auto& s) { s.track->title = "Sedge"; }},
        {"a shorter length", 2.1, 1, [](auto& s) { s.track->duration = 1; }},
    };
    for (const auto& row : rows) {
        EmptyModel f;
        f.apply();
        f.clock.advance(2s);
        row.edit(f.state);
        f.state.playerPosition = row.reported;
        f.apply();
        EXPECT_DOUBLE_EQ(f.model.position(f.now()), row.expected) << row.what;
    }
    EmptyModel f;
    f.apply(XPCPlayerState::paused);
    f.state.playerPosition = 1;
    f.apply(XPCPlayerState::playing);
    EXPECT_DOUBLE_EQ(f.model.position(f.now()), 1) << "from paused to playing";
}

TEST_F(PlayerModelTest, ClearsOnceAndKeepsWhatIsNotTheTracks) {
    EXPECT_EQ(model.clear(), std::nullopt);
    state.track->artworkData = cover("one");
    state.track->isLoved = true;
    state.playerPosition = 9;
    state.volume = 70;
    apply(XPCPlayerState::stopped);  // a track that is present but hidden
    EXPECT_EQ(model.clear(), "cleared (Quorvane unreachable or quit), card hidden");
    EXPECT_EQ(model.clear(), std::nullopt);
    EXPECT_EQ(model.artwork.get(), nullptr);
    EXPECT_FALSE(model.showsHeart.get() || model.isLoved.get() || model.isVisible.get());
    EXPECT_EQ(model.duration.get(), std::nullopt);
    EXPECT_EQ(model.position(now()), 0);
    EXPECT_EQ(model.volume.get(), 70);
    EXPECT_EQ(apply(), "track changed, artwork 3 B, heart shown, loved");
}

TEST_F(PlayerModelTest, NotifiesObserversOfChangesOnlyAndOfTheCardLast) {
    int calls = 0;
    const auto handles = model.observe([&] { ++calls; });
    bool everythingStood = false;
    const Handle visible = model.isVisible.subscribe([&] {
        everythingStood = model.isPlaying.get() && model.title.get() == "Reed" &&
                          model.artwork.get() != nullptr && model.duration.get() == 200;
    });
    state.track->artworkData = cover("one");
    apply();
    EXPECT_TRUE(everythingStood);
    EXPECT_EQ(calls, 8);  // track, title, artist, artwork, heart, length, two flags
    state.playerPosition = 1;
    apply();
    model.setVolume(50);
    EXPECT_EQ(calls, 8);
    model.beginVolumeDrag();
    model.setVolume(51);
    model.toggleLove();
    state.track->isLiveStream = true;  // which also takes the length away
    apply();
    EXPECT_EQ(calls, 13);
}

}  // namespace
}  // namespace quorvane

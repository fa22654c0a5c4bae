#include "AddOnKit/player/PlayerModel.hpp"

#include <gtest/gtest.h>

#include <thread>

#include "tests/AddOnKit/player/PlayingModel.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
struct PlayerModelTest : testing::Test, EmptyModel {};

TEST_F(PlayerModelTest, SumsUpWhatChangedInItsOrder) {
    using enum XPCPlayerState;
    state.track->artworkData = cover("picture");
    state.isLoved = true;
    state.volume = 64;
    const auto change = model.apply(state);
    ASSERT_TRUE(change);
    EXPECT_EQ(change->summary,
              "track changed, playing, card visible, artwork 7 B, heart shown, loved, volume 64");
    EXPECT_EQ(change->newTrack, (PlayerModel::TrackText{.title = "Reed", .artist = "Marsh"}));
    EXPECT_EQ(model.apply(state), std::nullopt);
    const std::pair<std::function<void()>, const char*> steps[] = {
        {[&] { state.isLoved = false, state.playerState = paused; },
         "not playing (paused), not loved"},
        {[&] { state.playerState = stopped; }, "card hidden"},
        {[&] { state.playerState = paused; }, "card visible"},
        {[&] { state.playerState = playing; }, "playing"},
        {[&] { state.playerState = unknown; }, "not playing (unknown), card hidden"},
        {[&] { state.track->album.reset(); }, "track changed"},
        {[&] { state.track->album = "", state.track->albumArtist = "Others"; }, ""},
        {[&] { state.playerType = XPCPlayerType::spotify; }, "heart hidden (player spotify)"},
        {[&] { state.playerType = XPCPlayerType::appleMusic; }, "heart shown"},
        {[&] { state.playerType.reset(); }, "heart hidden (player unknown)"},
        {[&] { state.playerType = XPCPlayerType::appleMusic; }, "heart shown"},
        {[&] { state.track->isAdvertisement = true; }, "heart hidden (advertisement)"},
        {[&] { state.track->isAdvertisement = false; }, "heart shown"},
        {[&] { state.track->artworkData = cover("picture"); }, ""},  // decoded before
        {[&] { state.track->artworkData = cover("broken"); }, "artwork 6 B (undecodable)"},
        {[&] { state.track.reset(), state.volume = -5; },
         "no track, artwork none, heart hidden (no track), volume 0"},
        {[&] { state.playerState = playing; }, "playing"}};  // but without a track
    for (const auto& [edit, summary] : steps) {
        edit();
        EXPECT_EQ(apply(), summary);
    }
    EXPECT_EQ(decodes, 2);
    EXPECT_EQ(model.title.get() + model.artist.get() + model.trackID.get(), "");
}

TEST_F(PlayerModelTest, AnEditOutlastsReportsDuringItsGraceTime) {
    const auto expectAfter = [this](Duration grace, const char* summary) {
        clock.advance(grace - 1ms);
        EXPECT_EQ(apply(), "");
        clock.advance(1ms);
        EXPECT_EQ(apply(), summary);
    };
    apply();
    model.toggleLove();
    expectAfter(1500ms, "not loved");
    state.track->isLoved = true;
    EXPECT_EQ(apply(), "loved");
    state.isLoved = false;  // the state's value overrides the track's
    EXPECT_EQ(apply(), "not loved");

    state.volume = 150;
    model.setVolume(-3);
    EXPECT_EQ(model.volume.get(), 0);
    expectAfter(1s, "volume 100");

    state.volume = 20;
    model.beginVolumeDrag();
    clock.advance(60s);
    EXPECT_EQ(apply(), "");
    model.endVolumeDrag();
    expectAfter(1s, "volume 20");
}

TEST_F(PlayerModelTest, ExtrapolatesThePositionWithinALengthThatIsKnown) {
    state.playerPosition = 195;
    apply();
    EXPECT_DOUBLE_EQ(model.position(now() + 2500ms), 197.5);
    EXPECT_DOUBLE_EQ(model.position(now() + 1h), 200);
    EXPECT_DOUBLE_EQ(model.position(kDistantPast), 195);
    clock.advance(2s);
    model.togglePlayPause();
    clock.advance(30s);
    EXPECT_DOUBLE_EQ(model.position(now()), 197);
    model.togglePlayPause();
    EXPECT_DOUBLE_EQ(model.position(now() + 1s), 198);

    state.playerPosition = -4;
    for (const std::optional<double> none : {std::optional<double>{}, {0.0}, {200.0}}) {
        state.track->duration = none;
        state.track->isLiveStream = none == 200;
        EXPECT_EQ(apply(), "");
        EXPECT_EQ(model.duration.get(), std::nullopt);
    }
    EXPECT_TRUE(model.isLiveStream.get());
    EXPECT_DOUBLE_EQ(model.position(now()), 0);
    EXPECT_DOUBLE_EQ(model.position(now() + 1h), 3596);

    state.playerPosition = 5;
    state.timestamp = WallTime{-9'200'000'000s};  // the largest distance between two dates
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
        std::function<void(EmptyModel&)> edit;
    } rows[] = {
        {"a little ahead", 3.4, 2, [](auto&) {}},
        {"a little behind", 0.6, 2, [](auto&) {}},
        {"just too far", 3.5, 3.5, [](auto&) {}},
        {"a seek back", 0.5, 0.5, [](auto&) {}},
        {"paused", 2.1, 2.1, [](auto& f) { f.state.playerState = XPCPlayerState::paused; }},
        {"playing again", 1, 1,
         [](auto& f) {
             f.apply(XPCPlayerState::paused);
             f.state.playerState = XPCPlayerState::playing;
         }},
        {"another track", 2.1, 2.1, [](auto& f) { f.state.track->title = "Sedge"; }},
        {"a shorter length", 2.1, 1, [](auto& f) { f.state.track->duration = 1; }},
    };
    for (const auto& row : rows) {
        EmptyModel f;
        f.apply();
        f.clock.advance(2s);
        row.edit(f);
        f.state.playerPosition = row.reported;
        f.apply();
        EXPECT_DOUBLE_EQ(f.model.position(f.now()), row.expected) << row.what;
    }
}

TEST_F(PlayerModelTest, ClearsOnceAndKeepsWhatIsNotTheTracks) {
    EXPECT_EQ(model.clear(), std::nullopt);
    state.track->artworkData = cover("one");
    state.track->isLoved = true;
    state.playerPosition = 9;
    apply(XPCPlayerState::stopped);  // a track that is present but hidden
    EXPECT_EQ(model.clear(), "cleared (Quorvane unreachable or quit), card hidden");
    EXPECT_EQ(model.clear(), std::nullopt);
    EXPECT_EQ(model.artwork.get(), nullptr);
    EXPECT_FALSE(model.showsHeart.get() || model.isLoved.get() || model.isVisible.get());
    EXPECT_EQ(model.duration.get(), std::nullopt);
    EXPECT_EQ(model.position(now()), 0);
    EXPECT_EQ(model.volume.get(), 50);
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

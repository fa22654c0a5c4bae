#include <gtest/gtest.h>

#include <algorithm>

#include "platform/MediaPlayers.hpp"
#include "platform/linux/services/HeadlessPlatform.hpp"
#include "tests/platform/linux/bus/FakeMprisPlayer.hpp"
#include "tests/support/LoopRunner.hpp"
#include "tests/support/PrivateBus.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

class MediaPlayersTest : public testing::Test {
protected:
    MediaPlayersTest() {
        privateBus.useHere();
        linux = std::make_shared<HeadlessPlatform>(LogSink{});
        services.clock = linux->loop.clock();
        services.mainThread = linux->loop.mainThread();
        services.owner = linux;
    }

    void start() {
        players = makeLiveMediaPlayers(services);
        observation = players->observe([this] { ++changes; });
    }
    void startUntilListed(const char* name) {
        start();
        ASSERT_TRUE(until([&] { return find(name) != nullptr; }));
    }
    sd_event* loop() { return linux->loop.event(); }
    bool until(const std::function<bool()>& condition) { return runUntil(linux->loop, condition); }
    const MediaPlayer* find(const std::string& name) {
        const auto& list = players->list();
        const auto found =
            std::ranges::find(list, "org.mpris.MediaPlayer2." + name, &MediaPlayer::busName);
        return found == list.end() ? nullptr : &*found;
    }
    template <typename T>
    T property(const std::string& name, const char* key) {
        const MediaPlayer* player = find(name);
        const T* value = player ? quorvane::find<T>(player->properties, key) : nullptr;
        return value ? *value : T{};
    }
    std::string title(const std::string& name) {
        const auto metadata = property<PropertyDictionary>(name, "Metadata");
        const auto* text = quorvane::find<std::string>(metadata, "xesam:title");
        return text ? *text : "";
    }
    // Whatever the fakes have sent until now has been handled.
    void settle() {
        static int count = 0;
        FakeMprisPlayer last{("settled" + std::to_string(++count)).c_str(), loop()};
        const std::string name = "settled" + std::to_string(count);
        ASSERT_TRUE(until([&] { return find(name) != nullptr; }));
    }

    PrivateBus privateBus;
    std::shared_ptr<HeadlessPlatform> linux;
    LiveServices services;
    std::optional<MediaPlayers> players;
    Handle observation;
    int changes = 0;
};

TEST_F(MediaPlayersTest, ListsWhoIsThereAndWhoComesAndGoes) {
    FakeMprisPlayer first{"first", loop()};
    start();
    EXPECT_TRUE(players->list().empty()) << "nothing is waited for";
    ASSERT_TRUE(until([&] { return find("first") && !find("first")->identity.empty(); }));
    EXPECT_EQ(find("first")->identity, "Fake");
    {
        FakeMprisPlayer second{"second.instance7", loop()};
        ASSERT_TRUE(until([&] { return find("second.instance7") != nullptr; }));
        EXPECT_EQ(players->list().size(), 2u);
    }
    ASSERT_TRUE(until([&] { return find("second.instance7") == nullptr; }));
    EXPECT_NE(find("first"), nullptr);
}

TEST_F(MediaPlayersTest, ReadsAndFollowsWhatAPlayerSays) {
    FakeMprisPlayer fake{"fake", loop()};
    startUntilListed("fake");
    EXPECT_EQ(property<PropertyDictionary>("fake", "Metadata"),
              (PropertyDictionary{
                  {"mpris:trackid", {std::string{"/track/1"}}},
                  {"mpris:length", {std::int64_t{90'000'000}}},
                  {"xesam:title", {std::string{"Title"}}},
                  {"xesam:trackNumber", {std::int64_t{3}}},
                  {"xesam:artist", {PropertyArray{{std::string{"One"}}, {std::string{"Two"}}}}}}));
    EXPECT_EQ(property<std::string>("fake", "PlaybackStatus"), "Playing");
    EXPECT_EQ(property<double>("fake", "Volume"), 0.5);
    EXPECT_FALSE(find("fake")->properties.contains("Position"));
    EXPECT_EQ(find("fake")->position, 7'000'000);
    EXPECT_TRUE(find("fake")->positionAt);

    fake.status = "Paused";
    fake.sayChanged("PlaybackStatus");
    EXPECT_TRUE(until([&] { return property<std::string>("fake", "PlaybackStatus") == "Paused"; }));
    EXPECT_EQ(title("fake"), "Title") << "what did not change stays";
    fake.title = "Other";
    fake.sayChanged("Metadata");
    EXPECT_TRUE(until([&] { return title("fake") == "Other"; })) << "said without a value: asked";
}

TEST_F(MediaPlayersTest, AsksAgainAndHearsOfSeeks) {
    FakeMprisPlayer fake{"fake", loop()};
    startUntilListed("fake");
    const auto before = find("fake")->positionAt;
    fake.position = 12'000'000;
    fake.title = "Corrected";  // without a signal
    players->refresh("org.mpris.MediaPlayer2.fake");
    ASSERT_TRUE(until([&] { return find("fake")->position == 12'000'000; }));
    EXPECT_GT(find("fake")->positionAt, before);
    EXPECT_EQ(title("fake"), "Corrected");
    fake.position = 30'000'000;
    fake.saySeeked();
    EXPECT_TRUE(until([&] { return find("fake")->position == 30'000'000; }));
    players->refresh("org.mpris.MediaPlayer2.absent");
}

TEST_F(MediaPlayersTest, TellsPlayers) {
    FakeMprisPlayer fake{"fake", loop()};
    startUntilListed("fake");
    const std::string name = "org.mpris.MediaPlayer2.fake";
    players->call(name, "Next");
    players->set(name, "Volume", {0.25});
    players->raise(name);
    ASSERT_TRUE(until([&] { return fake.heard.size() == 3; }));
    EXPECT_EQ(fake.heard, (std::vector<std::string>{"Next", "Volume", "Raise"}));
    EXPECT_EQ(fake.volume, 0.25);
    fake.sayChanged("Volume");
    EXPECT_TRUE(until([&] { return property<double>("fake", "Volume") == 0.25; }));
}

TEST_F(MediaPlayersTest, APlayerThatHangsHoldsNobodyUp) {
    FakeMprisPlayer hanging{"hanging", nullptr};
    FakeMprisPlayer lively{"lively", loop()};
    startUntilListed("lively");
    EXPECT_EQ(find("hanging"), nullptr);

    // One that hangs later keeps what it said; many questions to it do not pile up.
    lively.detach();
    for (int i = 0; i < 1000; ++i) players->refresh("org.mpris.MediaPlayer2.lively");
    players->call("org.mpris.MediaPlayer2.lively", "Next");
    settle();
    EXPECT_EQ(find("lively")->position, 7'000'000);
    lively.position = 8'000'000;
    lively.attach(loop());
    EXPECT_TRUE(until([&] { return find("lively")->position == 8'000'000; }));
    EXPECT_TRUE(until([&] { return !lively.heard.empty(); }));

    hanging.attach(loop());
    EXPECT_TRUE(until([&] { return find("hanging") != nullptr; }));
}

TEST_F(MediaPlayersTest, ListensToNoNonsense) {
    FakeMprisPlayer fake{"fake", loop()};
    startUntilListed("fake");
    const auto emit = [&](sd_bus* from, const char* interface, const char* member,
                          const char* types, auto... values) {
        EXPECT_GE(
            sd_bus_emit_signal(from, FakeMprisPlayer::kPath, interface, member, types, values...),
            0);
    };
    constexpr char kProperties[] = "org.freedesktop.DBus.Properties";
    emit(fake.bus(), kProperties, "PropertiesChanged", "s", FakeMprisPlayer::kPlayer);
    emit(fake.bus(), kProperties, "PropertiesChanged", "sa{ss}as", FakeMprisPlayer::kPlayer, 1,
         "Volume", "loud", 0);
    emit(fake.bus(), kProperties, "PropertiesChanged", "si", FakeMprisPlayer::kPlayer, 5);
    emit(fake.bus(), FakeMprisPlayer::kPlayer, "Seeked", "s", "far");
    // From somebody who is no player, and nobody's property.
    sd_bus* stranger = nullptr;
    ASSERT_GE(sd_bus_open_user(&stranger), 0);
    emit(stranger, kProperties, "PropertiesChanged", "sa{sv}as", FakeMprisPlayer::kPlayer, 1,
         "PlaybackStatus", "s", "Stopped", 0);
    emit(stranger, FakeMprisPlayer::kPlayer, "Seeked", "x", std::int64_t{1});
    sd_bus_flush_close_unref(stranger);
    settle();
    EXPECT_EQ(property<std::string>("fake", "PlaybackStatus"), "Playing");
    EXPECT_EQ(find("fake")->position, 7'000'000);
}

TEST_F(MediaPlayersTest, ALostBusHasNoPlayersUntilItIsBack) {
    std::optional<FakeMprisPlayer> fake;
    fake.emplace("fake", loop());
    startUntilListed("fake");
    privateBus.kill();
    fake.reset();
    ASSERT_TRUE(until([&] { return players->list().empty(); }));
    privateBus.start();
    fake.emplace("returned", loop());
    EXPECT_TRUE(until([&] { return find("returned") != nullptr; }));
}

TEST_F(MediaPlayersTest, WithoutABusThereAreNoPlayers) {
    privateBus.kill();
    start();
    players->refresh("org.mpris.MediaPlayer2.fake");
    players->call("org.mpris.MediaPlayer2.fake", "Next");
    players->set("org.mpris.MediaPlayer2.fake", "Volume", {1.0});
    runOnce(linux->loop);
    EXPECT_TRUE(players->list().empty());
}

}  // namespace
}  // namespace quorvane

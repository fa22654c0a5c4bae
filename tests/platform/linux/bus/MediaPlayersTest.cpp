#include "platform/MediaPlayers.hpp"

#include <gtest/gtest.h>

#include "platform/linux/bus/BusValues.hpp"
#include "platform/linux/bus/MprisPlayers.hpp"
#include "platform/linux/loop/SerialQueueLinux.hpp"
#include "platform/linux/services/HeadlessPlatform.hpp"
#include "tests/support/FakeBusService.hpp"
#include "tests/support/LoopRunner.hpp"
#include "tests/support/ManualClock.hpp"
#include "tests/support/PrivateBus.hpp"

namespace quorvane {
namespace {

constexpr char kPath[] = "/org/mpris/MediaPlayer2";
constexpr char kPlayer[] = "org.mpris.MediaPlayer2.Player";
constexpr char kProperties[] = "org.freedesktop.DBus.Properties";

// A player whose owner changes its values and then announces the change.
class FakePlayer : public FakeBusService {
public:
    double volume = 0.5;
    std::int64_t position = 7'000'000;
    std::string artwork = "file:///cover.png";
    std::vector<std::string> heard;  // methods called and properties set

    FakePlayer(EventLoop& loop, const std::string& address, const std::string& name)
        : FakeBusService(loop, address, "org.mpris.MediaPlayer2." + name,
                         [this](const std::string& member, sd_bus_message* call,
                                sd_bus_message* reply) { return answer(member, call, reply); }) {}

    template <typename... Arguments>
    void sayChanged(const char* types, Arguments... arguments) {
        signal(kPath, kProperties, "PropertiesChanged", types, kPlayer, arguments...);
    }

private:
    bool answer(const std::string& member, sd_bus_message* call, sd_bus_message* reply) {
        const char *interface = nullptr, *property = nullptr;
        if (member == "Get") {
            sd_bus_message_read(call, "ss", &interface, &property);
            return std::string_view{property} == "Position"
                       ? sd_bus_message_append(reply, "v", "x", position) >= 0
                       : sd_bus_message_append(reply, "v", "s", "Fake") >= 0;
        }
        if (member == "GetAll")
            return sd_bus_message_append(reply, "a{sv}", 4, "PlaybackStatus", "s", "Playing",
                                         "Volume", "d", volume, "Position", "x", position,
                                         "Metadata", "a{sv}", 5, "mpris:trackid", "o", "/track/1",
                                         "mpris:artUrl", "s", artwork.c_str(), "mpris:length", "t",
                                         std::uint64_t{90'000'000}, "odd:pair", "(si)", "x", 1,
                                         "xesam:artist", "as", 1, "One") >= 0;
        if (member == "Set") sd_bus_message_read(call, "ssv", &interface, &property, "d", &volume);
        heard.push_back(property ? property : member);
        return true;
    }
};

class MediaPlayersTest : public testing::Test {
protected:
    MediaPlayersTest() {
        privateBus.useHere();
        linux = std::make_shared<HeadlessPlatform>(LogSink{});
        services.clock = linux->loop.clock();
        services.mainThread = linux->loop.mainThread();
        services.owner = linux;
    }

    EventLoop& loop() { return linux->loop; }
    FakePlayer makePlayer(const std::string& name) { return {loop(), privateBus.address(), name}; }
    void start() {
        players.emplace(linux->sessionBus, services.clock, services.mainThread);
        players->start();
    }
    void startUntilListed(const std::string& name) {
        start();
        ASSERT_TRUE(until([&] { return find(name) != nullptr; }));
    }
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
    // Returns when all messages that the fakes have sent are handled.
    void settle() {
        const FakePlayer last = makePlayer("last");
        ASSERT_TRUE(until([&] { return find("last") != nullptr; }));
    }

    PrivateBus privateBus;
    std::shared_ptr<HeadlessPlatform> linux;
    LiveServices services;
    std::optional<MprisPlayers> players;
    const std::string kFake = "org.mpris.MediaPlayer2.fake";
};

TEST_F(MediaPlayersTest, AreReadFollowedAndTold) {
    FakePlayer fake = makePlayer("fake");
    start();
    EXPECT_TRUE(players->list().empty()) << "starting does not wait for answers";
    ASSERT_TRUE(until([&] { return find("fake") && find("fake")->identity == "Fake"; }));
    EXPECT_EQ(property<PropertyDictionary>("fake", "Metadata"),
              (PropertyDictionary{{"mpris:trackid", {std::string{"/track/1"}}},
                                  {"mpris:length", {std::int64_t{90'000'000}}},
                                  {"xesam:artist", {PropertyArray{{std::string{"One"}}}}}}));
    EXPECT_EQ(*find("fake")->artworkURL, "file:///cover.png");
    EXPECT_FALSE(find("fake")->properties.contains("Position"));
    EXPECT_EQ(find("fake")->position, 7'000'000);
    const auto before = find("fake")->positionAt;

    fake.sayChanged("sa{sv}as", 1, "PlaybackStatus", "s", "Paused", 0);
    EXPECT_TRUE(until([&] { return property<std::string>("fake", "PlaybackStatus") == "Paused"; }));
    EXPECT_EQ(property<double>("fake", "Volume"), 0.5) << "unchanged properties are kept";
    fake.position = 12'000'000;
    fake.sayChanged("sa{sv}as", 0, 1, "Metadata");
    ASSERT_TRUE(until([&] { return find("fake")->position == 12'000'000; })) << "asked again";
    EXPECT_GT(find("fake")->positionAt, before);
    fake.signal(kPath, kPlayer, "Seeked", "x", std::int64_t{30'000'000});
    EXPECT_TRUE(until([&] { return find("fake")->position == 30'000'000; }));

    players->call(kFake, "Next");
    players->set(kFake, "Volume", {0.25});
    players->call(kFake, "Raise");
    ASSERT_TRUE(until([&] { return fake.heard.size() == 3; }));
    EXPECT_EQ(fake.heard, (std::vector<std::string>{"Next", "Volume", "Raise"}));
    EXPECT_EQ(fake.volume, 0.25);
}

TEST_F(MediaPlayersTest, ALongArtworkURLIsReadOnce) {
    FakePlayer fake = makePlayer("fake");
    fake.artwork = "data:," + std::string(100'000, 'x');
    startUntilListed("fake");
    EXPECT_EQ(*find("fake")->artworkURL, fake.artwork);
    fake.position = 12'000'000;
    players->refresh(kFake);
    EXPECT_TRUE(until([&] { return find("fake")->position == 12'000'000; }));
    EXPECT_EQ(std::ranges::count(fake.calls(), "GetAll"), 1);

    fake.sayChanged("sa{sv}as", 1, "Volume", "d", 0.25, 0);
    EXPECT_TRUE(until([&] { return property<double>("fake", "Volume") == 0.25; }));
    EXPECT_TRUE(find("fake")->artworkURL) << "unchanged properties are kept";
    fake.artwork += std::string(12 << 20, 'x');
    fake.sayChanged("sa{sv}as", 1, "Metadata", "a{sv}", 1, "mpris:artUrl", "s",
                    fake.artwork.c_str(), 0);
    EXPECT_TRUE(until([&] { return !find("fake")->artworkURL; })) << "longer than any picture";
}

TEST_F(MediaPlayersTest, APlayerThatHangsHoldsNobodyUp) {
    ManualClock clock;
    services.clock = clock.clock();
    FakePlayer hanging = makePlayer("hanging");
    hanging.detach();
    FakePlayer fake = makePlayer("fake");
    startUntilListed("fake");
    EXPECT_EQ(find("hanging"), nullptr);

    // A player that hangs later keeps its values; many requests to it do not accumulate.
    fake.detach();
    for (int i = 0; i < 1000; ++i) players->refresh(kFake);
    players->call(kFake, "Next");
    settle();
    EXPECT_EQ(find("fake")->position, 7'000'000);
    EXPECT_FALSE(find("fake")->isSilent);
    clock.advance(std::chrono::seconds{5});
    ASSERT_TRUE(until([&] { return find("fake")->isSilent && find("hanging"); }));
    fake.position = 8'000'000;
    fake.attach(loop());
    EXPECT_TRUE(until([&] { return find("fake")->position == 8'000'000; }));
    EXPECT_FALSE(find("fake")->isSilent) << "it has answered late";
    clock.advance(std::chrono::seconds{5});
    EXPECT_TRUE(until([&] { return !fake.heard.empty(); }));
    EXPECT_EQ(std::ranges::count(fake.calls(), "GetAll"), 2);

    hanging.attach(loop());
    EXPECT_TRUE(until([&] { return !find("hanging")->isSilent; }));
    std::optional<FakePlayer> brief;
    brief.emplace(loop(), privateBus.address(), "brief");
    ASSERT_TRUE(until([&] { return find("brief") != nullptr; }));
    brief->detach();
    players->refresh("org.mpris.MediaPlayer2.brief");
    brief.reset();
    EXPECT_TRUE(until([&] { return find("brief") == nullptr; })) << "vanished during a request";
}

TEST_F(MediaPlayersTest, APlayerMayHaveTwoNames) {
    FakePlayer fake = makePlayer("fake");
    fake.requestName("org.mpris.MediaPlayer2.fake.instance7");
    startUntilListed("fake.instance7");
    fake.sayChanged("sa{sv}as", 1, "Metadata", "a{sv}", 1, "mpris:artUrl", "s", "/cover", 0);
    for (const char* name : {"fake", "fake.instance7"})
        EXPECT_TRUE(until([&] { return find(name) && *find(name)->artworkURL == "/cover"; }));
}

TEST_F(MediaPlayersTest, ListensToNoNonsense) {
    FakePlayer fake = makePlayer("fake");
    startUntilListed("fake");
    fake.sayChanged("s");
    fake.sayChanged("sa{ss}as", 1, "Volume", "loud", 0);
    fake.sayChanged("si", 5);
    fake.signal(kPath, kPlayer, "Seeked", "s", "far");
    const std::string tale(1000, 'x');
    fake.sayChanged("sa{sv}as", 1, "PlaybackStatus", "s", tale.c_str(), 0);
    for (int number = 0; number < 100; ++number)
        fake.sayChanged("sa{sv}as", 1, std::to_string(number).c_str(), "b", 1, 0);
    // Signals from a client that is not a player.
    FakeBusService stranger{loop(), privateBus.address(), "org.example.Stranger", nullptr};
    stranger.signal(kPath, kProperties, "PropertiesChanged", "sa{sv}as", kPlayer, 1,
                    "PlaybackStatus", "s", "Stopped", 0);
    stranger.signal(kPath, kPlayer, "Seeked", "x", std::int64_t{1});
    settle();
    EXPECT_EQ(property<std::string>("fake", "PlaybackStatus"), "Playing");
    EXPECT_EQ(find("fake")->position, 7'000'000);
    EXPECT_EQ(find("fake")->properties.size(), 64u);

    sd_bus_message* message = nullptr;
    sd_bus_message_new_signal(linux->sessionBus.connection(), &message, kPath, kPlayer, "Many");
    PropertyDictionary values{{"many", {PropertyArray(13'000, {true})}}};
    appendBusDictionary(message, values);
    sd_bus_message_seal(message, 1, 0);
    EXPECT_EQ(readBusDictionary(message, values), -EMSGSIZE);
    sd_bus_message_unref(message);
}

TEST_F(MediaPlayersTest, AreFollowedOnAThreadOfTheirOwn) {
    FakePlayer fake = makePlayer("fake");
    services.makeSerialQueue = makeSerialQueuesLinux();
    const MediaPlayers live = makeLiveMediaPlayers(services);
    ASSERT_TRUE(until([&] { return !live.list().empty(); }));
    live.call(kFake, "Next");
    live.set(kFake, "Volume", {0.25});
    live.call(kFake, "Raise");
    EXPECT_TRUE(until([&] { return fake.heard.size() == 3; }));
}

TEST_F(MediaPlayersTest, ALostBusHasNoPlayersUntilItIsBack) {
    {
        const FakePlayer fake = makePlayer("fake");
        startUntilListed("fake");
        privateBus.kill();
    }
    ASSERT_TRUE(until([&] { return players->list().empty(); }));
    players->refresh(kFake);
    players->call(kFake, "Next");
    players->set(kFake, "Volume", {1.0});
    privateBus.start();
    const FakePlayer returned = makePlayer("returned");
    EXPECT_TRUE(until([&] { return find("returned") != nullptr; }));
}

}  // namespace
}  // namespace quorvane

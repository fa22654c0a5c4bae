#include <gtest/gtest.h>

#include "host/settings/StoredSettings.hpp"
#include "tests/support/FakeNotices.hpp"
#include "tests/support/MemoryDefaults.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using Words = std::vector<std::string>;

TEST(Settings, AreSetUnsetAndExplained) {
    FakeNotices notices;
    // From a later version.
    const PropertyDictionary stored{{"glow", {std::string{"on"}}},
                                    {"privacy", {std::string{"half"}}}};
    MemoryDefaults defaults{.values = {{"settings", {stored}}}};
    StoredSettings settings{defaults.table(), notices.darwin()};
    StoredSettings running{defaults.table(), notices.darwin()};
    const auto run = [&](const Words& words) {
        const auto outcome = words.front() == "unset" ? settings.unset(std::span{words}.subspan(1))
                                                      : settings.set(std::span{words}.subspan(1));
        return outcome ? *outcome : "! " + outcome.error();
    };
    EXPECT_EQ(settings.current().get(), Settings{});
    const std::pair<Words, const char*> rows[] = {
        {{"set", "idle-minutes"}, "10\n"},
        {{"set", "fetch-artwork", "ON"}, "fetch-artwork: on\n"},
        {{"set", "Privacy", "player"}, "privacy: player\n"},
        {{"set", "privacy.Firefox"}, "player\n"},
        {{"set", "privacy.Firefox", "controls"}, "privacy.firefox: controls\n"},
        {{"set", "idle-minutes", "0"}, "idle-minutes: 0\n"},
        {{"set", "ignore", "VLC,", "mpv.instance7"}, "ignore: vlc mpv.instance7\n"},
        {{"set", "prefer", "none"}, "prefer: none\n"},
        {{"unset", "fetch-artwork"}, "fetch-artwork: off\n"},
        {{"unset"}, "! unset takes the name of one setting"},
        {{"unset", "art"}, "! unknown setting 'art'"},
        {{"set", "pause-lock"}, "! unknown setting 'pause-lock'; did you mean 'pause-on-lock'?"},
        {{"set", "privacy.a b", "full"},
         "! 'a b' is not a player's name (see: quorvane-host players)"},
        {{"set", "quiet-wake", "yes"}, "! quiet-wake takes off or on, not 'yes'"},
        {{"set", "privacy", "control"},
         "! privacy takes full, player or controls, not 'control'; did you mean 'controls'?"},
        {{"set", "idle-minutes", "1441"},
         "! idle-minutes takes a number from 0 to 1440, not '1441'"},
        {{"set", "prefer", "/dev/mpv"},
         "! prefer takes names of players, not '/dev/mpv' (see: quorvane-host players)"},
    };
    for (const auto& [words, expected] : rows) EXPECT_EQ(run(words), expected);
    EXPECT_EQ(running.current().get(), (Settings{.privacy = Privacy::player,
                                                 .privacyOf = {{"firefox", Privacy::controls}},
                                                 .idleTime = 0min,
                                                 .ignored = {"vlc", "mpv.instance7"}}));
    EXPECT_NE(run({"set"}).find("\nprivacy.firefox   controls           privacy\n"),
              std::string::npos)
        << run({"set"});
    EXPECT_TRUE(defaults.values["settings"].as<PropertyDictionary>()->contains("glow"));
    defaults.refuses = true;
    EXPECT_EQ(run({"set", "ignore", "none"}), "! the settings cannot be written: full");
}

}  // namespace
}  // namespace quorvane

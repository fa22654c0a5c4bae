// The card on a real accessibility bus, read through the library that screen readers use.

#include <gtest/gtest.h>

#include "AddOnKit/card/PlayerGeometry.hpp"
#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

class EndToEndAccessibility : public testing::Test {
protected:
    // By SIGTERM, because after SIGKILL its bus would keep running.
    void TearDown() override { launcher.process().end(SIGTERM); }

    bool succeeds(std::vector<std::string> program, std::vector<std::string> arguments) {
        program.insert(program.end(), arguments.begin(), arguments.end());
        return session.start(program).process().wait(20s) == 0;
    }
    bool bus(std::vector<std::string> arguments) {
        return succeeds({"busctl", "--user", "--quiet"}, std::move(arguments));
    }
    bool use(const char* isInUse) {
        return bus({"set-property", "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status", "IsEnabled",
                    "b", isInUse});
    }
    bool reader(std::vector<std::string> arguments) {
        return succeeds({"/usr/bin/python3", SCREEN_READER}, std::move(arguments));
    }
    std::string tree() {
        LoggedProcess told = session.start({"/usr/bin/python3", SCREEN_READER, "tree"});
        told.says("end of the tree");
        return told.log();
    }
    bool treeHolds(const std::string& text) {
        return eventually([&] { return tree().find(text) != std::string::npos; });
    }

    LockSession session;
    LoggedProcess launcher =
        session.start({"env", "GSETTINGS_BACKEND=memory", "/usr/libexec/at-spi-bus-launcher",
                       "--launch-immediately", "--a11y=0"});
};

TEST_F(EndToEndAccessibility, AScreenReaderFindsTheCardAndItsPressesAreClicks) {
    ASSERT_TRUE(eventually([&] {
        return bus({"call", "org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Peer", "Ping"});
    }));
    LoggedProcess host = session.startHost();
    LoggedProcess addOn = session.startAddOn();
    LoggedProcess listener = session.start({"/usr/bin/python3", SCREEN_READER, "listen"});
    ASSERT_TRUE(listener.says("listening"));
    LoggedProcess locker = session.startLocker();
    const CardOnScreen card = session.nextCard(addOn);
    ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    EXPECT_EQ(addOn.count("accessibility:"), 0) << "assistive technology is not in use yet";
    ASSERT_TRUE(use("true"));
    ASSERT_TRUE(addOn.says("accessibility: connected")) << addOn.log();

    const Point next = card.middleOf(PlayerGeometry::make(true, false).next);
    const std::string place = std::to_string(static_cast<int>(next.x) - 22) + "," +
                              std::to_string(static_cast<int>(next.y) - 22) + " 44x44 itself\n";
    for (const std::string& line :
         {std::string{"application 'Quorvane Lock Screen'\n"},
          std::string{"  grouping 'Now Playing' at "}, std::string{"    label 'Tideline' at "},
          std::string{"    label '\u2212"}, std::string{"    image 'Artwork' at "},
          std::string{"    progress bar 'Playback Position' "},
          std::string{"    push button 'Pause' click at "},
          "    push button 'Next Track' click at " + place,
          std::string{"    slider 'Volume' increment decrement 64 of 0..100 by 5 at "}})
        EXPECT_TRUE(treeHolds(line)) << line << "\n" << tree();
    EXPECT_EQ(tree().find('('), std::string::npos) << tree();

    EXPECT_TRUE(reader({"do", "Pause", "click"}));
    ASSERT_TRUE(addOn.says("command: playPause")) << addOn.log();
    EXPECT_TRUE(listener.says("object:property-change:accessible-name of push button 'Play'"));
    EXPECT_TRUE(treeHolds("push button 'Play' click"));
    EXPECT_FALSE(reader({"do", "Pause", "click"}));

    EXPECT_TRUE(reader({"do", "Volume", "increment"}));
    ASSERT_TRUE(addOn.says("volume: step to 69")) << addOn.log();
    EXPECT_TRUE(listener.says("object:property-change:accessible-value of slider 'Volume'"));
    EXPECT_TRUE(reader({"set", "Volume", "31"}));
    ASSERT_TRUE(addOn.says("volume: step to 31")) << addOn.log();
    EXPECT_TRUE(treeHolds("'Volume' increment decrement 31 of 0..100 by 5"));

    EXPECT_TRUE(reader({"do", "Next Track", "click"}));
    ASSERT_TRUE(addOn.says("state: track changed"));
    EXPECT_TRUE(listener.says("object:property-change:accessible-name of label"));

    ASSERT_TRUE(use("false"));
    ASSERT_TRUE(addOn.says("accessibility: disconnected"));
    ASSERT_TRUE(use("true"));
    ASSERT_TRUE(addOn.says("accessibility: connected"));
    locker.process().end(SIGTERM);
    ASSERT_TRUE(addOn.says("accessibility: disconnected"));
    EXPECT_TRUE(eventually([&] { return !reader({"tree"}); }));
    locker = session.startLocker();
    ASSERT_TRUE(addOn.says("accessibility: connected")) << addOn.log();
    launcher.process().end(SIGTERM);
    EXPECT_TRUE(addOn.says("accessibility: disconnected"));
}

}  // namespace
}  // namespace quorvane

// The tables that the entry point receives.
#include "platform/LivePlatform.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "platform/linux/CardModuleLoader.hpp"
#include "platform/linux/x11/X11SessionLinux.hpp"
#include "tests/support/PrivateXServer.hpp"
#include "tests/support/RecordingLog.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

class LivePlatformTest : public testing::Test {
protected:
    LivePlatformTest() {
        setenv("HOME", folder.path().c_str(), 1);
        setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1);
        setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
        setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent", 1);
        unsetenv("DISPLAY");
        unsetenv("WAYLAND_DISPLAY");
    }
    Result<LivePlatform> make() {
        char name[] = "test";
        char* arguments[] = {name, nullptr};
        auto services = makeLiveServices(1, arguments, "example.quillon.Quorvane.Test");
        if (!services) return std::unexpected(services.error());
        services->log = log.sink();
        return makeLivePlatform(*std::move(services));
    }

    TemporaryFolder folder;
    RecordingLog log;
};

TEST_F(LivePlatformTest, SaysPlainlyWhyThereIsNone) {
    EXPECT_EQ(
        make().error().description,
        "there is no session to show a card in: neither WAYLAND_DISPLAY nor DISPLAY is set; use a "
        "terminal of the session");
    for (const auto& [display, reason] :
         {std::pair{":4711", "no X server answers there"},
          std::pair{":nothing", "the display's name makes no sense"}}) {
        setenv("DISPLAY", display, 1);
        EXPECT_EQ(make().error().description, std::string{"cannot open the display \""} + display +
                                                  "\": " + reason + "; start it in an X11 session");
    }
    unsetenv("DISPLAY");
    setenv("WAYLAND_DISPLAY", "wayland-0", 1);
    setenv("XDG_CURRENT_DESKTOP", "sway", 1);
    EXPECT_NE(make().error().description.find("sway shows nothing"), std::string::npos);
    setenv("XDG_CURRENT_DESKTOP", "KDE", 1);
    EXPECT_TRUE(make()) << "the compositor is queried only during a lock";
}

TEST_F(LivePlatformTest, FillsEveryTable) {
    PrivateXServer server;
    setenv("DISPLAY", server.display().c_str(), 1);
    setenv("LANGUAGE", "he", 1);
    setenv("LC_ALL", "he_IL.UTF-8", 1);
    auto made = make();
    ASSERT_TRUE(made) << made.error().description;
    LivePlatform& platform = *made;
    EXPECT_TRUE(platform.services.openSuite("example.suite"));
    EXPECT_FALSE(platform.services.openSuite("../escape"));
    EXPECT_TRUE(platform.isRightToLeft());
    EXPECT_FALSE(platform.cardWindows.reducesMotion());
    EXPECT_FALSE(platform.decodeImage(bytesOf("no picture")));
    EXPECT_TRUE(platform.decodeImage(bytesOf("GIF89a")));

    // The module is not in this program's folder.
    EXPECT_FALSE(platform.cardWindows.makeWindow({}, platform.screens.list().front()));
    EXPECT_FALSE(platform.cardWindows.makeStage({}));
    EXPECT_TRUE(log.lines().back().text.starts_with("card: the card module cannot be loaded"));
}

bool hasLoaded(const std::string& library) {
    std::stringstream maps;
    maps << std::ifstream{"/proc/self/maps"}.rdbuf();
    return maps.str().find("/" + library) != std::string::npos;
}

TEST_F(LivePlatformTest, LeavesTheDrawingLibrariesAloneUntilTheFirstWindow) {
    PrivateXServer server;
    EventLoop loop;
    auto session = X11SessionLinux::open(loop, server.display(), [] {});
    ASSERT_TRUE(session);
    CardModuleLoader loader{
        QUORVANE_CARD_MODULE,
        {.clock = loop.clock(), .mainThread = loop.mainThread(), .log = log.sink()},
        static_cast<X11Session*>(session->get())};
    const CardWindows windows = loader.windows();
    EXPECT_FALSE(hasLoaded("libcairo.so") || hasLoaded("libpango-1.0.so"));
    EXPECT_TRUE(windows.makeStage({.card = {400, 222}}));
    EXPECT_TRUE(hasLoaded("libcairo.so"));
}

}  // namespace
}  // namespace quorvane

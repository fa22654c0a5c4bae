// The tables as the entry gets them.
#include "platform/LivePlatform.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <string>

#include "drawing/pictures/EncodedImage.hpp"
#include "platform/linux/CardModuleLoader.hpp"
#include "platform/linux/card/CardModule.hpp"
#include "platform/linux/lockers/X11SessionLinux.hpp"
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
    EXPECT_TRUE(make()) << "the compositor is asked only during a lock";
}

TEST_F(LivePlatformTest, EndsWithTheServer) {
    PrivateXServer server;
    setenv("DISPLAY", server.display().c_str(), 1);
    auto platform = make();
    ASSERT_TRUE(platform) << platform.error().description;
    bool hasTerminated = false;
    const int status = platform->services.application.run([&] { server.process().signal(SIGKILL); },
                                                          [&] { hasTerminated = true; });
    EXPECT_EQ(status, EXIT_FAILURE);
    EXPECT_TRUE(hasTerminated) << "the end is an orderly one";
    EXPECT_TRUE(log.contains("x11: the X server has gone away"));
}

TEST_F(LivePlatformTest, FillsEveryTable) {
    PrivateXServer server;
    setenv("DISPLAY", server.display().c_str(), 1);
    setenv("LANG", "he_IL.UTF-8", 1);
    unsetenv("LC_ALL");
    unsetenv("LC_MESSAGES");
    unsetenv("LANGUAGE");
    auto made = make();
    ASSERT_TRUE(made) << made.error().description;
    LivePlatform& platform = *made;
    EXPECT_TRUE(platform.isRightToLeft());
    EXPECT_EQ(platform.localized("Play"), "Play");
    EXPECT_FALSE(platform.windowServerLoader);
    EXPECT_FALSE(platform.cardWindows.reducesMotion());
    EXPECT_TRUE(platform.beginActivity(1, "a card stands"));
    EXPECT_EQ(platform.screens.list().size(), 1u);
    EXPECT_EQ(platform.lockSources.sessionDictionary(), (PropertyValue{PropertyDictionary{}}));

    const std::string picture{"GIF89a\x10\0\x20\0", 10};
    EXPECT_FALSE(platform.decodeImage(bytesOf("no picture")));
    const ImageRef held = platform.decodeImage(bytesOf(picture));
    const auto* image = dynamic_cast<const EncodedImage*>(held.get());
    ASSERT_TRUE(image);
    EXPECT_EQ(textOf(image->bytes()), picture);
    EXPECT_EQ(image->state().get(), Image::State::arriving);

    // The module is not beside this program.
    EXPECT_FALSE(platform.cardWindows.makeWindow({}, platform.screens.list().front()));
    EXPECT_FALSE(platform.cardWindows.makeStage({}));
    const auto lines = log.lines();
    EXPECT_EQ(std::ranges::count(lines, LogLevel::error, &RecordingLog::Line::level), 2);
    EXPECT_TRUE(lines.back().text.starts_with("card: the drawing module cannot be loaded"));
}

// Whether the program has a library of this name in its memory.
bool hasLoaded(const std::string& name) {
    std::ifstream maps{"/proc/self/maps"};
    for (std::string line; std::getline(maps, line);)
        if (line.find("/" + name) != std::string::npos) return true;
    return false;
}

TEST_F(LivePlatformTest, LeavesTheDrawingLibrariesAloneUntilTheFirstWindow) {
    PrivateXServer server;
    EventLoop loop;
    auto session = X11SessionLinux::open(loop, server.display(), [] {});
    ASSERT_TRUE(session);
    CardModuleLoader loader{
        QUORVANE_CARD_MODULE,
        Logger{log.sink(), "", "card"},
        {kMakeCardWindowsSymbol, [&](void* entry) {
             return reinterpret_cast<MakeCardWindows>(entry)(
                 {**session, loop.clock(), loop.mainThread(), log.sink(), nullptr});
         }}};
    const CardWindows windows = loader.windows();
    EXPECT_FALSE(hasLoaded("libcairo.so"));
    EXPECT_FALSE(hasLoaded("libpango-1.0.so"));
    const auto stage = windows.makeStage({.card = {400, 222}});
    EXPECT_TRUE(stage) << (log.lines().empty() ? "" : log.lines().front().text);
    EXPECT_TRUE(hasLoaded("libcairo.so"));
}

}  // namespace
}  // namespace quorvane

// The card above KDE Plasma's own lock screen: its compositor nested in a virtual X server.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

constexpr char kPassword[] = "quorvane";
constexpr char kSocket[] = "wayland-quorvane";

class EndToEndWayland : public testing::Test {
protected:
    void SetUp() override {
        if (kwin().empty() || !std::filesystem::exists(PAM_WRAPPER_MODULES))
            GTEST_SKIP() << "needs the packages of the group wayland in tools/packages.txt";
        startCompositor();
        ASSERT_TRUE(eventually([&] { return screenSaver("GetActive") == 0; })) << compositor.log();
        host = session.startHost();
        addOn = LoggedProcess{{ADDON_PROGRAM}, environment()};
        ASSERT_TRUE(addOn.says("lock monitor started")) << addOn.log();
    }

    static std::filesystem::path kwin() {
        const std::filesystem::path program{"/usr/bin/kwin_wayland"};
        return std::filesystem::exists(program) ? program : "";
    }
    std::vector<std::string> environment() const {
        auto variables = session.environment();
        variables.insert(variables.end(), {std::string{"WAYLAND_DISPLAY="} + kSocket,
                                           "XDG_SESSION_TYPE=wayland", "XDG_CURRENT_DESKTOP=KDE"});
        return variables;
    }
    // Without a GPU, and with the test's own password.
    void startCompositor() {
        const TemporaryFolder& folder = session.folder();
        // A copy has no file capability, which containers refuse.
        const auto program = folder / "kwin_wayland";
        std::filesystem::copy_file(kwin(), program);
        std::string service;
        for (const char* kind : {"auth", "account", "password", "session"})
            service += std::string{kind} +
                       " required " PAM_WRAPPER_MODULES "/pam_matrix.so passdb=" +
                       (folder / "passdb").string() + "\n";
        folder.write("pam/kde", service);
        // By default a key unlocks without a password in the first seconds.
        folder.write("config/kscreenlockerrc", "[Daemon]\nLockGrace=0\n");
        folder.write("passdb", "root:" + std::string{kPassword} + ":kde\n");
        auto variables = session.environment();
        variables.insert(variables.end(), {"KWIN_COMPOSE=Q", "QT_QUICK_BACKEND=software",
                                           "LD_PRELOAD=libpam_wrapper.so", "PAM_WRAPPER=1",
                                           "PAM_WRAPPER_SERVICE_DIR=" + (folder / "pam").string(),
                                           "XDG_CACHE_HOME=" + (folder / "cache").string()});
        compositor = LoggedProcess{{program.string(), "--x11-display", session.x().display(),
                                    "--width", "1920", "--height", "1080", "--socket", kSocket},
                                   variables};
    }
    int screenSaver(const std::string& method) {
        return LoggedProcess::run({"dbus-send", "--session", "--print-reply",
                                   "--reply-timeout=20000", "--dest=org.freedesktop.ScreenSaver",
                                   "/ScreenSaver", "org.freedesktop.ScreenSaver." + method},
                                  session.environment())
            .status;
    }
    // The card has entered when this returns. This KWin puts a lock screen that is drawn later
    // above the card, which then makes a new surface.
    void lock() {
        xdotool({"mousemove", "960", "1000"});
        ASSERT_EQ(screenSaver("Lock"), 0) << compositor.log();
        ASSERT_TRUE(addOn.says("lockui: shown")) << addOn.log();
        const std::string line = addOn.next(" on screen ");
        const std::size_t at = line.find(" at {{");
        ASSERT_NE(at, line.npos) << addOn.log();
        std::sscanf(line.c_str() + at, " at {{%lf, %lf}, {%lf, %lf}}", &card.frame.x, &card.frame.y,
                    &card.frame.width, &card.frame.height);
        card.frame.y = -card.frame.maxY();  // in the log it grows upward
        ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
        ASSERT_TRUE(LockSession::isDrawnOn(probe, {800, 120, 320, 160}));
        EXPECT_TRUE(eventually([&] { return isCardSeen(); })) << addOn.log();
    }
    void xdotool(std::vector<std::string> words) {
        words.insert(words.begin(), "xdotool");
        LoggedProcess::run(words, session.environment());
    }
    // The glass is darker than all of the lock screen there, and lighter than the empty desktop.
    bool isCardSeen() const {
        const Rect glass{card.frame.x + 52 + 80, card.frame.y + 52 + 109, 240, 8};
        const auto pixels = screenshot(probe.connection(), glass).values;
        return std::ranges::all_of(
            pixels, [](std::uint32_t pixel) { return (pixel & 0xff) > 8 && (pixel & 0xff) < 60; });
    }
    // Types the password, again if the busy lock screen has missed a key.
    bool unlock() {
        for (int attempt = 0; attempt < 3; ++attempt) {
            xdotool({"key", "ctrl+a", "BackSpace"});
            xdotool({"type", "--delay", "60", kPassword});
            xdotool({"key", "Return"});
            if (addOn.says("unlock: com.apple.screenIsUnlocked", 8s)) return true;
        }
        return false;
    }
    std::vector<std::uint32_t> prompt() const {
        return screenshot(probe.connection(), {830, 600, 220, 40}).values;
    }
    // The processes with the card's surfaces.
    int surfaceProcesses() {
        const auto run =
            LoggedProcess::run({"pgrep", "-c", "-P", std::to_string(addOn.process().pid()), "-f",
                                "quorvane-card-surface"},
                               {});
        return std::atoi(run.text.c_str());
    }
    bool hasLoaded(const std::string& library) {
        std::stringstream maps;
        maps << std::ifstream{"/proc/" + std::to_string(addOn.process().pid()) + "/maps"}.rdbuf();
        return maps.str().find("/" + library) != std::string::npos;
    }
    // Whether the card leaves the screen within two seconds.
    bool isGoneInTime() const {
        const auto begin = std::chrono::steady_clock::now();
        return eventually([&] { return !isCardSeen(); }) &&
               std::chrono::steady_clock::now() - begin < 2s;
    }

    LockSession session;  // 1920 × 1080
    X11Client probe = session.probe();
    LoggedProcess compositor;
    LoggedProcess host;
    LoggedProcess addOn;
    CardOnScreen card;
};

TEST_F(EndToEndWayland, TheCardStandsAboveTheLockScreenUntilThePasswordIsTyped) {
    EXPECT_EQ(surfaceProcesses(), 0);
    EXPECT_FALSE(hasLoaded("libxcb") || hasLoaded("libcairo"));
    lock();
    for (int i = 0; i < 10; ++i) xdotool({"mousemove", std::to_string(900 + i), "1000"});
    EXPECT_TRUE(eventually([&] { return isCardSeen(); })) << addOn.log();
    EXPECT_EQ(surfaceProcesses(), 1);
    EXPECT_FALSE(hasLoaded("libxcb-composite.so")) << "only Cairo loads libraries of X11";
    const PlayerGeometry geometry = PlayerGeometry::make(true, false);
    const Point next = card.middleOf(geometry.next);
    xdotool({"mousemove", std::to_string(int(next.x)), std::to_string(int(next.y))});
    // The pointer reaches the card a moment after the entrance has begun.
    for (int attempt = 0; attempt < 5; ++attempt) {
        xdotool({"click", "1"});
        if (addOn.says("mouse down at", 1s)) break;
    }
    ASSERT_TRUE(addOn.says("command: nextTrack")) << addOn.log();
    ASSERT_TRUE(addOn.says("state: track changed"));
    // Keys reach the prompt: the first one opens it.
    const auto closed = prompt();
    xdotool({"key", "x"});
    EXPECT_TRUE(eventually([&] { return prompt() != closed; }));
    EXPECT_TRUE(eventually([&] { return isCardSeen(); })) << addOn.log();
    EXPECT_TRUE(unlock()) << addOn.log();
    EXPECT_TRUE(isGoneInTime());
    EXPECT_EQ(surfaceProcesses(), 0);
    EXPECT_EQ(addOn.count("wayland error"), 0) << addOn.log();
}

TEST_F(EndToEndWayland, AStoppedOrKilledAddOnLeavesNoCard) {
    lock();
    addOn.process().signal(SIGSTOP);
    EXPECT_TRUE(isGoneInTime());
    addOn.process().signal(SIGCONT);
    EXPECT_TRUE(addOn.says("screens changed")) << "the lock continues, and the card returns";
    EXPECT_TRUE(eventually([&] { return isCardSeen(); })) << addOn.log();
    addOn.process().end(SIGKILL);
    EXPECT_TRUE(isGoneInTime());
}

}  // namespace
}  // namespace quorvane

// A private session with X server, bus and folders, in which host, add-on and a real locker run:
// i3lock, or KDE Plasma's in its compositor. The screen has two pixels per point.
#pragma once

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "bench/FrameWatch.hpp"
#include "tests/end_to_end/LoggedProcess.hpp"
#include "tests/support/PrivateBus.hpp"
#include "tests/support/PrivateXServer.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {

class BenchSession {
public:
    // Plays one scripted track, or holds it paused.
    BenchSession(const std::string& title, bool isPlaying, bool isOnWayland = false) {
        unsetenv("WAYLAND_DISPLAY");  // X11 lockers refuse to start when it is set
        FrameWatch::setDotsPerInch(x_.display(), 192);
        folder_.write("script.json",
                      R"({"player": "appleMusic", "volume": 64, "autoplay": )" +
                          std::string{isPlaying ? "true" : "false"} +
                          R"(, "tracks": [{"title": ")" + title +
                          R"(", "artist": "Harbour Lights", "duration": 3000, "artwork": ")" +
                          DEMO_FOLDER + R"(/tideline.jpg"}]})");
        start({"sh", "-c", "\"$0\" enable >&2", HOST_PROGRAM})
            .process()
            .wait(std::chrono::seconds{20});
        host_ = start({HOST_PROGRAM, "run", "--player", "scripted", "--script",
                       (folder_ / "script.json").string()});
        // The main port and each query port log it.
        for (int port = 0; port < 5; ++port) require(host_, "started on dedicated thread");
        if (isOnWayland) startCompositor();
    }

    std::vector<std::string> environment() const {
        std::vector<std::string> variables{
            x_.environment(), bus_.environment(), "HOME=" + (folder_ / "home").string(),
            "XDG_RUNTIME_DIR=" + folder_.path().string(),
            "XDG_CONFIG_HOME=" + (folder_ / "config").string(),
            "XDG_DATA_HOME=" + (folder_ / "data").string(),
            // No services, but a bus: the add-on retries a missing one.
            "DBUS_SYSTEM_BUS_ADDRESS=" + bus_.address(), "QUORVANE_LOG=stderr", "LC_ALL=C.UTF-8"};
        variables.insert(variables.end(), waylandVariables_.begin(), waylandVariables_.end());
        return variables;
    }
    LoggedProcess start(const std::vector<std::string>& arguments) const {
        return LoggedProcess{arguments, environment()};
    }
    // Returns when the add-on watches the lock and has a state.
    LoggedProcess startAddOn() const {
        LoggedProcess addOn = start({ADDON_PROGRAM});
        require(addOn, kReady);
        return addOn;
    }
    LoggedProcess lock() const {
        if (!waylandVariables_.empty()) {
            askScreenSaver("Lock");
            return {};
        }
        return start({"i3lock", "-n", "-c", "336699"});
    }

    static void require(LoggedProcess& process, std::string_view text) {
        if (process.says(text)) return;
        std::fprintf(stderr, "never said \"%.*s\"; its log:\n%s", static_cast<int>(text.size()),
                     text.data(), process.log().c_str());
        std::exit(1);
    }

    const std::string& display() const { return x_.display(); }
    pid_t xServer() { return x_.process().pid(); }

    static constexpr char kReady[] = "lock monitor started";
    static constexpr char kCompositor[] = "/usr/bin/kwin_wayland";

private:
    // Drawn by the processor. A copy of the program has no file capability, which containers
    // refuse.
    void startCompositor() {
        const auto program = folder_ / "kwin_wayland";
        std::filesystem::copy_file(kCompositor, program);
        compositor_ = start({"env", "KWIN_COMPOSE=Q", "QT_QUICK_BACKEND=software", program,
                             "--x11-display", x_.display(), "--width", "1600", "--height", "900",
                             "--scale", "2", "--socket", "wayland-bench"});
        waylandVariables_ = {"WAYLAND_DISPLAY=wayland-bench", "XDG_SESSION_TYPE=wayland",
                             "XDG_CURRENT_DESKTOP=KDE"};
        for (int tries = 0; tries < 100; ++tries) {
            if (askScreenSaver("GetActive") == 0) return;
            std::this_thread::sleep_for(std::chrono::milliseconds{100});
        }
    }
    int askScreenSaver(const std::string& method) const {
        return LoggedProcess::run(
                   {"dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.ScreenSaver",
                    "/ScreenSaver", "org.freedesktop.ScreenSaver." + method},
                   environment())
            .status;
    }

    TemporaryFolder folder_;
    PrivateXServer x_{"3200x1800x24"};
    PrivateBus bus_;
    LoggedProcess host_;
    LoggedProcess compositor_;
    std::vector<std::string> waylandVariables_;  // of programs that start later
};

}  // namespace quorvane

// A private session with X server, bus and folders, in which host, add-on and a real locker run.
// The screen has two pixels per point.
#pragma once

#include <string>
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
    BenchSession(const std::string& title, bool isPlaying) {
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
    }

    LoggedProcess start(const std::vector<std::string>& arguments) const {
        return LoggedProcess{
            arguments,
            {x_.environment(), bus_.environment(), "HOME=" + (folder_ / "home").string(),
             "XDG_RUNTIME_DIR=" + folder_.path().string(),
             "XDG_CONFIG_HOME=" + (folder_ / "config").string(),
             "XDG_DATA_HOME=" + (folder_ / "data").string(),
             // No services, but a bus: the add-on retries a missing one.
             "DBUS_SYSTEM_BUS_ADDRESS=" + bus_.address(), "QUORVANE_LOG=stderr", "LC_ALL=C.UTF-8"}};
    }
    // Returns when the add-on watches the lock and has a state.
    LoggedProcess startAddOn() const {
        LoggedProcess addOn = start({ADDON_PROGRAM});
        require(addOn, kReady);
        return addOn;
    }
    LoggedProcess lock() const { return start({"i3lock", "-n", "-c", "336699"}); }

    static void require(LoggedProcess& process, std::string_view text) {
        if (process.says(text)) return;
        std::fprintf(stderr, "never said \"%.*s\"; its log:\n%s", static_cast<int>(text.size()),
                     text.data(), process.log().c_str());
        std::exit(1);
    }

    const std::string& display() const { return x_.display(); }
    pid_t xServer() { return x_.process().pid(); }

    static constexpr char kReady[] = "lock monitor started";

private:
    TemporaryFolder folder_;
    PrivateXServer x_{"3200x1800x24"};
    PrivateBus bus_;
    LoggedProcess host_;
};

}  // namespace quorvane

// A private session: X server, bus and folders, in which the add-on, its host and a real locker run
// as processes.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "AddOnKit/card/PlayerGeometry.hpp"
#include "tests/end_to_end/LoggedProcess.hpp"
#include "tests/support/PrivateBus.hpp"
#include "tests/support/PrivateXServer.hpp"
#include "tests/support/Screenshot.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tests/support/X11Client.hpp"

namespace quorvane {

// One card's window.
struct CardOnScreen {
    xcb_window_t window = XCB_WINDOW_NONE;
    Rect frame;  // root pixels, shadow margin included

    // The centre of a control, at scale 1.
    Point middleOf(const Rect& control) const {
        return {frame.x + 52 + control.midX(), frame.y + 52 + control.midY()};
    }
};

// The system resources that a process holds.
struct Holdings {
    std::ptrdiff_t descriptors = 0;
    std::ptrdiff_t threads = 0;
    std::size_t ownKilobytes = 0;  // resident and not backed by a file

    static Holdings of(pid_t pid) {
        const std::filesystem::path folder = "/proc/" + std::to_string(pid);
        const auto count = [&](const char* name) {
            return std::distance(std::filesystem::directory_iterator{folder / name}, {});
        };
        Holdings holdings{count("fd"), count("task")};
        std::ifstream status{folder / "status"};
        for (std::string word; status >> word;)
            if (word == "RssAnon:") status >> holdings.ownKilobytes;
        return holdings;
    }
};

class LockSession {
public:
    LockSession() {
        // X lockers refuse to start when the variable exists, even when it is empty.
        unsetenv("WAYLAND_DISPLAY");
    }

    std::vector<std::string> environment() const {
        return {x_.environment(),
                bus_.environment(),
                "HOME=" + (folder_ / "home").string(),
                "XDG_RUNTIME_DIR=" + folder_.path().string(),
                "XDG_CONFIG_HOME=" + (folder_ / "config").string(),
                "XDG_DATA_HOME=" + (folder_ / "data").string(),
                "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nonexistent",
                "QUORVANE_LOG=stderr",
                "QUORVANE_LOG_PRIVATE=1",
                "LC_ALL=C.UTF-8"};
    }

    LoggedProcess start(const std::vector<std::string>& arguments) {
        return LoggedProcess{arguments, environment()};
    }
    // Serving when this returns.
    LoggedProcess startHost(const std::vector<std::string>& options = {"--script", DEMO_SCRIPT}) {
        std::vector<std::string> arguments{HOST_PROGRAM, "run"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        start({HOST_PROGRAM, "enable"}).process().wait(std::chrono::seconds{20});
        LoggedProcess host = start(arguments);
        // The main port and the query ports each log it.
        for (int port = 0; port < 5; ++port) host.says("started on dedicated thread");
        return host;
    }
    // Watching the lock when this returns.
    LoggedProcess startAddOn() {
        LoggedProcess addOn = start({ADDON_PROGRAM});
        addOn.says("lock monitor started");
        return addOn;
    }
    LoggedProcess startLocker() { return start({"i3lock", "-n", "-c", "336699"}); }

    // The next card that the add-on logs, once it is visible.
    CardOnScreen nextCard(LoggedProcess& addOn) const {
        const std::string line = addOn.next(" on screen ");
        const std::size_t at = line.find("window ");
        if (at == std::string::npos) return {};
        const auto window = static_cast<xcb_window_t>(std::stoul(line.substr(at + 7)));
        const X11Client probe{x_.display()};
        EXPECT_TRUE(eventually([&] { return probe.isViewable(window); }));
        return {window, probe.frame(window)};
    }

    // Waits until the area shows more than the lock screen's single colour.
    static bool isDrawnOn(const X11Client& probe, const Rect& area) {
        return eventually([&] {
            const auto pixels = screenshot(probe.connection(), area).values;
            return std::set(pixels.begin(), pixels.end()).size() > 100;
        });
    }

    // Clicks until the card has received it: a press in the first milliseconds of its entrance may
    // precede the add-on's selection of pointer events.
    static bool click(const X11Client& probe, LoggedProcess& addOn, Point at) {
        for (int attempt = 0; attempt < 20; ++attempt) {
            probe.click(at);
            if (addOn.says("mouse down at", std::chrono::milliseconds{500})) return true;
        }
        return false;
    }

    X11Client probe() const { return X11Client{x_.display()}; }
    PrivateXServer& x() { return x_; }
    // Programs that are started from now on use the new server.
    void replaceXServer() { x_ = PrivateXServer{kGeometry}; }
    PrivateBus& bus() { return bus_; }
    const TemporaryFolder& folder() const { return folder_; }

private:
    static constexpr char kGeometry[] = "1920x1080x24";

    TemporaryFolder folder_;
    PrivateXServer x_{kGeometry};
    PrivateBus bus_;
};

// A session with a host and an add-on. The test locks it.
class EndToEndLock : public testing::Test {
protected:
    void lock() { lockWith(session.startLocker()); }
    // The card is visible over the locker when this returns.
    void lockWith(LoggedProcess itsLocker) {
        locker = std::move(itsLocker);
        card = session.nextCard(addOn);
        ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    }

    LockSession session;
    X11Client probe = session.probe();
    LoggedProcess host = session.startHost();
    LoggedProcess addOn = session.startAddOn();
    LoggedProcess locker;
    CardOnScreen card;
};

}  // namespace quorvane

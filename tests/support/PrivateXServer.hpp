// A test's own virtual X server, on an unused display.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.hpp"

namespace quorvane {

class PrivateXServer {
public:
    // `geometry` is "1600x900x24". The display is "" when the server did not start.
    explicit PrivateXServer(const std::string& geometry = "1600x900x24",
                            const std::vector<std::string>& more = {}) {
        int ends[2] = {-1, -1};
        if (pipe2(ends, O_CLOEXEC) != 0) return;
        std::vector<std::string> arguments{"Xvfb",     "-displayfd", std::to_string(ends[1]),
                                           "-screen",  "0",          geometry,
                                           "-noreset", "-nolisten",  "tcp"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        // The server writes an error for every display that is taken.
        arguments.insert(arguments.begin(), {"sh", "-c", "exec \"$@\" 2>/dev/null", "sh"});
        process_ = ChildProcess{arguments, {}, ends[1]};
        close(ends[1]);
        const std::string number = readLine(ends[0]);
        close(ends[0]);
        if (!number.empty()) display_ = ":" + number;
    }

    const std::string& display() const { return display_; }
    std::string environment() const { return "DISPLAY=" + display_; }
    ChildProcess& process() { return process_; }

    // Adds a monitor with a new name; the first primary one replaces the server's own. Returns when
    // the server has it.
    void setMonitor(const std::string& name, int width, int height, int x, int y,
                    bool isPrimary = false) {
        const auto part = [](int length) { return std::to_string(length) + "/100"; };
        runXrandr(
            {"--setmonitor", (isPrimary ? "*" : "") + name,
             part(width) + "x" + part(height) + "+" + std::to_string(x) + "+" + std::to_string(y),
             isPrimary ? "screen" : "none"});
    }
    // Sets the root window's size, at most the server's initial one, and turns its output off.
    void resizeRoot(const std::string& pixels, const std::string& millimeters) {
        runXrandr({"--output", "screen", "--off", "--fb", pixels, "--fbmm", millimeters});
    }
    void deleteMonitor(const std::string& name) { runXrandr({"--delmonitor", name}); }

private:
    void runXrandr(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"xrandr", "--display", display_});
        // xrandr lists its changes.
        arguments.insert(arguments.begin(), {"sh", "-c", "exec \"$@\" >/dev/null", "sh"});
        ChildProcess{arguments}.wait(std::chrono::seconds{20});
    }

    ChildProcess process_;
    std::string display_;
};

}  // namespace quorvane

// A virtual X server of a test's own, on a display that nobody else uses.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <string>

#include "tests/support/ChildProcess.hpp"

namespace quorvane {

class PrivateXServer {
public:
    // `geometry` is "1600x900x24". The display is "" when the server did not come up.
    explicit PrivateXServer(const std::string& geometry = "1600x900x24",
                            const std::vector<std::string>& more = {}) {
        int ends[2] = {-1, -1};
        if (pipe2(ends, O_CLOEXEC) != 0) return;
        std::vector<std::string> arguments{"Xvfb",     "-displayfd", std::to_string(ends[1]),
                                           "-screen",  "0",          geometry,
                                           "-noreset", "-nolisten",  "tcp"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        process_ = ChildProcess{arguments, {}, ends[1]};
        close(ends[1]);
        const std::string number = readLine(ends[0]);
        close(ends[0]);
        if (!number.empty()) display_ = ":" + number;
    }

    const std::string& display() const { return display_; }
    std::string environment() const { return "DISPLAY=" + display_; }
    ChildProcess& process() { return process_; }

private:
    static std::string readLine(int descriptor) {
        std::string line;
        char character = 0;
        pollfd entry{descriptor, POLLIN, 0};
        while (poll(&entry, 1, 30'000) > 0 && read(descriptor, &character, 1) == 1) {
            if (character == '\n') return line;
            line.push_back(character);
        }
        return {};
    }

    ChildProcess process_;
    std::string display_;
};

}  // namespace quorvane

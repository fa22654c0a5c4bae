// Waiting for a line from another process.
#pragma once

#include <poll.h>
#include <unistd.h>

#include <string>

namespace quorvane {

// The next line without its end; "" when the other side has closed, or after half a minute, as only
// in a failing test.
inline std::string readLine(int descriptor) {
    std::string line;
    char character = 0;
    pollfd entry{descriptor, POLLIN, 0};
    while (poll(&entry, 1, 30'000) > 0 && read(descriptor, &character, 1) == 1) {
        if (character == '\n') return line;
        line.push_back(character);
    }
    return line;
}

}  // namespace quorvane

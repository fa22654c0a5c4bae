// Text of an XDG autostart entry: a desktop file that the session manager starts at login. A plain
// value.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quorvane {

struct AutostartEntry {
    std::string name;                  // the displayed name
    std::filesystem::path executable;  // started without arguments

    std::string text() const;
    // Whether the entry starts this executable.
    bool isStartedBy(std::string_view entry) const;
    // Whether the user has disabled the entry, in any desktop's way.
    static bool isSwitchedOff(std::string_view entry);
};

}  // namespace quorvane

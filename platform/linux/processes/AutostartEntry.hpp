// The text of an XDG autostart entry: a desktop file that the session's manager starts at login.
// Pure values.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quorvane {

struct AutostartEntry {
    std::string name;                  // for people
    std::filesystem::path executable;  // started without arguments

    std::string text() const;
    // Whether the entry starts this executable.
    bool isStartedBy(std::string_view entry) const;
    // Whether the user has switched the entry off, with whatever desktop.
    static bool isSwitchedOff(std::string_view entry);
};

}  // namespace quorvane

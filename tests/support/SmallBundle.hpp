// An application of a few files: its program is the system's `sleep`, started with a long time.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/ChildProcess.hpp"

namespace quorvane {

// Makes the bundle at the path, over an existing one.
inline void makeSmallBundle(const std::filesystem::path& bundle, const std::string& identifier,
                            const std::string& version = "1.0.0") {
    namespace fs = std::filesystem;
    fs::create_directories(bundle / "Contents/Linux");
    fs::copy_file("/bin/sleep", bundle / "Contents/Linux/Sleeper",
                  fs::copy_options::overwrite_existing);
    std::ofstream{bundle / "Contents/Info.plist"}
        << "{ CFBundleIdentifier = \"" << identifier << "\"; CFBundleExecutable = Sleeper; "
        << "CFBundleShortVersionString = \"" << version << "\"; }";
}

inline ChildProcess startSmallBundle(const std::filesystem::path& bundle,
                                     const std::vector<std::string>& environment = {}) {
    return ChildProcess{{(bundle / "Contents/Linux/Sleeper").string(), "1000"}, environment};
}

}  // namespace quorvane

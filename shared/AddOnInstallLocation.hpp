// Where the add-on is installed. The installer puts it there, and the add-on's removal deletes
// nothing elsewhere.
#pragma once

#include <filesystem>

namespace quorvane {

struct AddOnInstallLocation {
    // The user's application-support folder where it is a fixed place in the home folder.
    static std::filesystem::path applicationSupport(const std::filesystem::path& home);

    // Both below that folder; the bundle lies inside the support folder.
    static std::filesystem::path supportDirectory(const std::filesystem::path& applicationSupport);
    static std::filesystem::path bundle(const std::filesystem::path& applicationSupport);
    static std::filesystem::path bundleIn(const std::filesystem::path& supportDirectory);
};

}  // namespace quorvane

// The add-on's install location. The installer puts it there; removal deletes the folder.
#pragma once

#include <filesystem>

namespace quorvane {

struct AddOnInstallLocation {
    // Both are below the application-support folder; the bundle is inside the support folder.
    static std::filesystem::path supportDirectory(const std::filesystem::path& applicationSupport);
    static std::filesystem::path bundle(const std::filesystem::path& applicationSupport);
    static std::filesystem::path bundleIn(const std::filesystem::path& supportDirectory);
};

}  // namespace quorvane

// The bundle that `quorvane-host install` installs by default.
#pragma once

#include <optional>

#include "platform/BundleFiles.hpp"

namespace quorvane {

// The add-on's bundle that belongs to this program: in the parent of the program's folder, as when
// built, or in "lib/quorvane" there, as when packaged.
std::optional<std::filesystem::path> bundleToInstall(const std::filesystem::path& program,
                                                     const BundleFiles& files);

}  // namespace quorvane

// Which bundle `quorvane-host install` installs when none is named.
#pragma once

#include <optional>

#include "platform/BundleFiles.hpp"

namespace quorvane {

// The add-on's bundle that belongs to this program: in the folder above it, as when built, or in
// "lib/quorvane" beside the folder it lies in, as when packaged.
std::optional<std::filesystem::path> bundleToInstall(const std::filesystem::path& program,
                                                     const BundleFiles& files);

}  // namespace quorvane

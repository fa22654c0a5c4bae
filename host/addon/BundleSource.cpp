#include "host/addon/BundleSource.hpp"

#include "host/addon/AddOnInstallation.hpp"
#include "shared/AddOnInstallLocation.hpp"

namespace quorvane {

std::optional<std::filesystem::path> bundleToInstall(const std::filesystem::path& program,
                                                     const BundleFiles& files) {
    const auto above = program.parent_path().parent_path();
    for (const auto& folder : {above, above / "lib" / "quorvane"})
        if (auto bundle = AddOnInstallLocation::bundleIn(folder); addOnVersionOf(bundle, files))
            return bundle;
    return std::nullopt;
}

}  // namespace quorvane

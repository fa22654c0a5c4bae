#include "shared/AddOnInstallLocation.hpp"

#include "QuorvaneKit/link/Identifiers.hpp"

namespace quorvane {

using std::filesystem::path;

path AddOnInstallLocation::supportDirectory(const path& applicationSupport) {
    return applicationSupport / kAddOnBundleIdentifier;
}

path AddOnInstallLocation::bundle(const path& applicationSupport) {
    return bundleIn(supportDirectory(applicationSupport));
}

path AddOnInstallLocation::bundleIn(const path& supportDirectory) {
    return supportDirectory / "Quorvane Lock Screen.app";
}

}  // namespace quorvane

#include "shared/AddOnInstallLocation.hpp"

namespace quorvane {

using std::filesystem::path;

path AddOnInstallLocation::applicationSupport(const path& home) {
    return home / "Library" / "Application Support";
}

path AddOnInstallLocation::supportDirectory(const path& applicationSupport) {
    return applicationSupport / "example.quillon.Quorvane.LockScreenAddOn";
}

path AddOnInstallLocation::bundle(const path& applicationSupport) {
    return bundleIn(supportDirectory(applicationSupport));
}

path AddOnInstallLocation::bundleIn(const path& supportDirectory) {
    return supportDirectory / "Quorvane Lock Screen.app";
}

}  // namespace quorvane

#include "AddOnKit/life/SelfRemoval.hpp"

#include <system_error>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "shared/AddOnInstallLocation.hpp"
#include "shared/AddOnSignals.hpp"

namespace quorvane {

void SelfRemoval::perform() const {
    log.standard("removal: starting");
    if (const auto marked = markPending(); !marked) {
        log.error("removal: not marked as pending: %{public}s; deleting nothing; quitting",
                  errorText(marked.error()));
        return terminate();
    }
    const bool loginItemIsGone = removeLoginItem();
    const bool supportDirectoryIsGone = removeSupportDirectory();
    if (!removeBundle()) {
        log.error(
            "removal: the bundle is still there; keeping removalPending so the next launch "
            "finishes it; quitting");
        return terminate();
    }
    if (!loginItemIsGone || !supportDirectoryIsGone)
        log.error(
            "removal: an earlier step failed, but the bundle is gone; clearing preferences anyway");
    clearPreferences();
    log.standard("removal: finished; quitting");
    terminate();
}

// Comes before any deletion. From then on the next launch of this bundle continues the removal.
Result<void> SelfRemoval::markPending() const {
    std::optional<PropertyValue> identity;
    if (auto identifier = fileManager.identity(bundle))
        identity = PropertyValue{*std::move(identifier)};
    defaults.set(AddOnSignals::kRemovalBundleIdentityKey, std::move(identity));
    defaults.set(AddOnSignals::kRemovalPendingKey, PropertyValue{true});
    return defaults.synchronize();
}

bool SelfRemoval::removeLoginItem() const {
    const std::int64_t status = loginItem.status();
    if (status == LoginItemClient::kNotRegistered || status == LoginItemClient::kNotFound) {
        log.info("removal: login item not registered");
        return true;
    }
    if (const auto result = loginItem.unregisterItem(); !result) {
        log.error("removal: unregister() failed: %{public}s", errorText(result.error()));
        return false;
    }
    log.info("removal: login item unregistered");
    return true;
}

// The installer creates a real folder, not a symlink, and never puts another bundle there.
bool SelfRemoval::isOwnSupportDirectory() const {
    if (supportDirectory.filename() != kAddOnBundleIdentifier) return false;
    std::error_code error;
    if (std::filesystem::is_symlink(supportDirectory, error)) return false;
    const auto inside = fileManager.identity(AddOnInstallLocation::bundleIn(supportDirectory));
    return !inside || *inside == kAddOnBundleIdentifier;
}

bool SelfRemoval::removeSupportDirectory() const {
    if (!isOwnSupportDirectory()) {
        log.fault("removal: refusing to delete %{public}s: not the add-on's support folder",
                  supportDirectory.string());
        return false;
    }
    return remove(supportDirectory, "support folder");
}

bool SelfRemoval::removeBundle() const {
    if (!fileManager.fileExists(bundle)) {
        log.info("removal: the bundle was already gone");
        return true;
    }
    const auto identity = fileManager.identity(bundle);
    if (bundle.extension() != ".app" || !identity || *identity != kAddOnBundleIdentifier) {
        log.fault("removal: refusing to delete %{public}s: not the add-on's bundle",
                  bundle.string());
        return false;
    }
    remove(bundle, "bundle");
    return !fileManager.fileExists(bundle);
}

bool SelfRemoval::remove(const std::filesystem::path& path, const char* label) const {
    const auto result = fileManager.removeItem(path);
    if (result) {
        log.info("removal: deleted the %{public}s", label);
        return true;
    }
    if (result.error().domain == PlatformError::Domain::cocoa &&
        result.error().code == FileManagerClient::kNoSuchFile) {
        log.info("removal: the %{public}s was already gone", label);
        return true;
    }
    log.error("removal: deleting the %{public}s failed: %{public}s", label,
              errorText(result.error()));
    return false;
}

void SelfRemoval::clearPreferences() const {
    defaults.removeDomain();
    if (const auto cleared = defaults.synchronize(); !cleared)
        log.error("removal: the preferences were not cleared: %{public}s",
                  errorText(cleared.error()));
}

}  // namespace quorvane

#include "AddOnKit/life/LaunchDecision.hpp"

#include <system_error>

#include "QuorvaneKit/link/SharedDefaultsKey.hpp"
#include "platform/ErrorText.hpp"
#include "shared/AddOnSignals.hpp"
#include "shared/RemovalKeys.hpp"

namespace quorvane {

LaunchDecision LaunchPerformer::decide() const {
    if (AddOnSignals::contains(arguments, AddOnSignals::kUninstallArgument))
        return LaunchDecision::uninstall;
    if (AddOnSignals::contains(arguments, AddOnSignals::kInstalledArgument))
        return LaunchDecision::run;
    const auto pending = defaults.get(kRemovalPendingKey);
    if (!pending || pending->as<bool>() == nullptr || !*pending->as<bool>())
        return LaunchDecision::run;
    if (isPendingRemovalOfThisBundle()) return LaunchDecision::finishRemoval;
    log.standard("launch: a removal flag left by another copy of the add-on; clearing it");
    defaults.removeDomain();
    // If this fails, the next launch finds the flag and clears it again.
    if (const auto written = defaults.synchronize(); !written)
        log.error("launch: the removal flag was not cleared: %{public}s",
                  errorText(written.error()));
    return LaunchDecision::run;
}

bool LaunchPerformer::isPendingRemovalOfThisBundle() const {
    const auto recorded = defaults.get(kRemovalBundleIdentityKey);
    if (!recorded || recorded->as<std::string>() == nullptr) return false;
    std::error_code error;
    const auto resolved = std::filesystem::canonical(bundle, error);
    const auto own = identity(error ? bundle : resolved);
    return own && *own == *recorded->as<std::string>();
}

void LaunchPerformer::perform(const std::function<void()>& finishRemoval,
                              const std::function<void()>& uninstall,
                              const std::function<void()>& run) const {
    switch (decide()) {
        case LaunchDecision::finishRemoval: return finishRemoval();
        case LaunchDecision::uninstall: return uninstall();
        case LaunchDecision::run: break;
    }
    if (AddOnSignals::contains(arguments, AddOnSignals::kInstalledArgument)) voidRemovalRequest();
    run();
}

// The removal was requested before this copy was installed, so it does not apply.
void LaunchPerformer::voidRemovalRequest() const {
    if (!sharedDefaults) return;
    for (const char* const key : {SharedDefaultsKey::lockScreenRemovalRequested,
                                  SharedDefaultsKey::lockScreenRemovalTargetInstallID})
        sharedDefaults->set(key, std::nullopt);
    // If this fails, the first hello supersedes the request.
    if (const auto written = sharedDefaults->synchronize(); !written)
        log.error("launch: the removal request was not cleared: %{public}s",
                  errorText(written.error()));
}

}  // namespace quorvane

#include "AddOnKit/life/LaunchDecision.hpp"

#include <system_error>

#include "QuorvaneKit/link/SharedDefaultsKey.hpp"
#include "shared/AddOnSignals.hpp"

namespace quorvane {
namespace {

bool isOfThisBundle(const LaunchInputs& launch) {
    const auto recorded = launch.defaults.get(AddOnSignals::kRemovalBundleIdentityKey);
    const auto* const identifier = recorded ? recorded->as<std::string>() : nullptr;
    if (identifier == nullptr) return false;
    std::error_code error;
    const auto resolved = std::filesystem::canonical(launch.bundle, error);
    return launch.identity(error ? launch.bundle : resolved) == *identifier;
}

// If clearing fails, the next launch finds the flag and clears it again.
void clearForeignRemoval(const LaunchInputs& launch) {
    launch.log.standard("launch: a removal flag left by another copy of the add-on; clearing it");
    launch.defaults.removeDomain();
    if (const auto written = launch.defaults.synchronize(); !written)
        launch.log.error("launch: the removal flag was not cleared: %{public}s",
                         errorText(written.error()));
}

// The removal was requested before this copy was installed, so it does not apply. If clearing
// fails, the first hello supersedes the request.
void voidRemovalRequest(const LaunchInputs& launch) {
    if (!launch.sharedDefaults) return;
    for (const char* const key : {SharedDefaultsKey::lockScreenRemovalRequested,
                                  SharedDefaultsKey::lockScreenRemovalTargetInstallID})
        launch.sharedDefaults->set(key, std::nullopt);
    if (const auto written = launch.sharedDefaults->synchronize(); !written)
        launch.log.error("launch: the removal request was not cleared: %{public}s",
                         errorText(written.error()));
}

}  // namespace

LaunchDecision decideLaunch(const LaunchInputs& launch) {
    if (AddOnSignals::contains(launch.arguments, AddOnSignals::kUninstallArgument))
        return LaunchDecision::uninstall;
    if (AddOnSignals::contains(launch.arguments, AddOnSignals::kInstalledArgument)) {
        voidRemovalRequest(launch);
        return LaunchDecision::run;
    }
    const auto pending = launch.defaults.get(AddOnSignals::kRemovalPendingKey);
    if (pending != PropertyValue{true}) return LaunchDecision::run;
    if (isOfThisBundle(launch)) return LaunchDecision::finishRemoval;
    clearForeignRemoval(launch);
    return LaunchDecision::run;
}

}  // namespace quorvane

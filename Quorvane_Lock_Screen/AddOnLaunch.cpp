#include "Quorvane_Lock_Screen/AddOnLaunch.hpp"

#include "AddOnKit/life/LaunchDecision.hpp"
#include "AddOnKit/life/SelfRemoval.hpp"
#include "QuorvaneKit/link/Identifiers.hpp"
#include "shared/AddOnInstallLocation.hpp"

namespace quorvane {
namespace {

void removeAddOn(const LiveServices& services, const Logger& log) {
    const auto& applicationSupport = services.installation.applicationSupport;
    const SelfRemoval removal{
        .defaults = services.standardDefaults,
        .loginItem = services.installation.loginItem,
        .fileManager = services.installation.fileManager,
        .bundle = services.process.bundle,
        // Without a home folder the path is empty, and the removal rejects it.
        .supportDirectory = applicationSupport
                                ? AddOnInstallLocation::supportDirectory(*applicationSupport)
                                : std::filesystem::path{},
        .terminate = services.application.terminate,
        .log = log};
    removal.perform();
}

}  // namespace

void launchAddOn(const LiveServices& services, const std::function<void()>& run) {
    const Logger log{services.log, kAddOnBundleIdentifier, "removal"};
    switch (decideLaunch({.arguments = services.process.arguments,
                          .defaults = services.standardDefaults,
                          .sharedDefaults = services.openSuite(std::string{kAppGroup}),
                          .bundle = services.process.bundle,
                          .identity = services.installation.fileManager.identity,
                          .log = log})) {
        case LaunchDecision::run: return run();
        case LaunchDecision::finishRemoval:
            log.standard("launch: a removal is pending; finishing it");
            break;
        case LaunchDecision::uninstall:
            log.standard("launch: asked to uninstall; removing the add-on");
            break;
    }
    removeAddOn(services, log);
}

}  // namespace quorvane

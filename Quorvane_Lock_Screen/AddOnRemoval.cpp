#include "Quorvane_Lock_Screen/AddOnRemoval.hpp"

#include "AddOnKit/SelfRemoval.hpp"
#include "QuorvaneKit/Identifiers.hpp"
#include "shared/AddOnInstallLocation.hpp"

namespace quorvane {
namespace {

void remove(const LiveServices& services, const Logger& log) {
    const auto& applicationSupport = services.installation.applicationSupport;
    const SelfRemoval removal{
        .defaults = services.standardDefaults,
        .loginItem = services.installation.loginItem,
        .fileManager = services.installation.fileManager,
        .bundle = services.process.bundle,
        // Without a home there is no such folder, and the empty path is refused.
        .supportDirectory = applicationSupport
                                ? AddOnInstallLocation::supportDirectory(*applicationSupport)
                                : std::filesystem::path{},
        .terminate = services.application.terminate,
        .log = log};
    removal.perform();
}

Logger removalLog(const LiveServices& services) {
    return {services.log, kAddOnBundleIdentifier, "removal"};
}

}  // namespace

void finishRemoval(const LiveServices& services) {
    const Logger log = removalLog(services);
    log.standard("launch: a removal is pending; finishing it");
    remove(services, log);
}

void uninstall(const LiveServices& services) {
    const Logger log = removalLog(services);
    log.standard("launch: asked to uninstall; removing the add-on");
    remove(services, log);
}

}  // namespace quorvane

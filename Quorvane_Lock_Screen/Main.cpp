// The entry of the add-on: makes the live tables and runs the main loop.

#include <cstdio>

#include "QuorvaneKit/Identifiers.hpp"
#include "Quorvane_Lock_Screen/AddOnApp.hpp"
#include "Quorvane_Lock_Screen/AddOnRemoval.hpp"
#include "shared/AddOnSignals.hpp"

namespace quorvane {
namespace {

int fail(const PlatformError& error) {
    std::fprintf(stderr, "Quorvane Lock Screen: %s\n", error.description.c_str());
    return 1;
}

// A session without a screen to show a card on: the add-on can still be removed in it.
int runWithoutScreen(const LiveServices& services, const PlatformError& reason) {
    if (AddOnSignals::contains(services.process.arguments, AddOnSignals::kUninstallArgument))
        return services.application.run([&services] { uninstall(services); }, [] {});
    // Nobody reads the standard error of what was started detached.
    Logger{services.log, kAddOnBundleIdentifier, "app"}.error("launch: %{public}s",
                                                              reason.description);
    return fail(reason);
}

int run(int argumentCount, char** arguments) {
    auto services = makeLiveServices(argumentCount, arguments, std::string{kAddOnBundleIdentifier});
    if (!services) return fail(services.error());
    services->application.handleTerminationSignal(
        [log = Logger{services->log, kAddOnBundleIdentifier, "app"}] {
            log.standard("received SIGTERM; quitting");
        });
    const auto platform = makeLivePlatform(*services);
    if (!platform) return runWithoutScreen(*services, platform.error());
    AddOnApp app{*platform};
    return platform->services.application.run([&app] { app.applicationDidFinishLaunching(); },
                                              [&app] { app.applicationWillTerminate(); });
}

}  // namespace
}  // namespace quorvane

int main(int argumentCount, char** arguments) { return quorvane::run(argumentCount, arguments); }

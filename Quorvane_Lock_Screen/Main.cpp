// The entry of the add-on: makes the live tables and runs the main loop.

#include <cstdio>

#include "QuorvaneKit/Identifiers.hpp"
#include "Quorvane_Lock_Screen/AddOnApp.hpp"

namespace quorvane {
namespace {

int fail(const PlatformError& error) {
    std::fprintf(stderr, "Quorvane Lock Screen: %s\n", error.description.c_str());
    return 1;
}

int run(int argumentCount, char** arguments) {
    auto services = makeLiveServices(argumentCount, arguments, std::string{kAddOnBundleIdentifier});
    if (!services) return fail(services.error());
    services->application.handleTerminationSignal(
        [log = Logger{services->log, kAddOnBundleIdentifier, "app"}] {
            log.standard("received SIGTERM; quitting");
        });
    const auto platform = makeLivePlatform(*std::move(services));
    if (!platform) return fail(platform.error());
    AddOnApp app{*platform};
    return platform->services.application.run([&app] { app.applicationDidFinishLaunching(); },
                                              [&app] { app.applicationWillTerminate(); });
}

}  // namespace
}  // namespace quorvane

int main(int argumentCount, char** arguments) { return quorvane::run(argumentCount, arguments); }

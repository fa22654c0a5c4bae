// Entry of the add-on: makes the live tables and runs the main loop.

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "Quorvane_Lock_Screen/AddOnApp.hpp"
#include "Quorvane_Lock_Screen/AddOnLaunch.hpp"
#include "shared/AddOnSignals.hpp"

namespace quorvane {
namespace {

int fail(const PlatformError& error) {
    std::fprintf(stderr, "Quorvane Lock Screen: %s\n", error.description.c_str());
    return 1;
}

constexpr char kHelp[] =
    "Usage: \"Quorvane Lock Screen\" [OPTION]...\n"
    "\n"
    "Shows the playing track on the lock screen. It is installed and started by quorvane-host.\n"
    "\n"
    "Options:\n"
    "  --installed    used by installers: cancel an earlier request to remove the add-on\n"
    "  --uninstall    remove the add-on's login item, files and settings, and quit\n"
    "  -h, --help     show this text and exit\n"
    "  -V, --version  show the version and exit\n";

// The answer to an option that needs no application. Returns nullopt when there is no such option,
// or for a removal, which takes precedence.
std::optional<std::string> answerTo(const std::vector<std::string>& words) {
    if (AddOnSignals::contains(words, AddOnSignals::kUninstallArgument)) return std::nullopt;
    const auto asked = [&](const char* longName, const char* shortName) {
        return AddOnSignals::contains(words, longName) || AddOnSignals::contains(words, shortName);
    };
    if (asked("--help", "-h")) return kHelp;
    if (asked("--version", "-V")) return "Quorvane Lock Screen " QUORVANE_VERSION "\n";
    return std::nullopt;
}

// Handles a session without a screen. Only running the add-on needs one.
int runWithoutScreen(const LiveServices& services, const PlatformError& reason) {
    int status = 0;
    const auto refuseToRun = [&] {
        // Also logged, because the standard error of a detached process is lost.
        Logger{services.log, kAddOnBundleIdentifier, "app"}.error("launch: %{public}s",
                                                                  reason.description);
        status = fail(reason);
        services.application.terminate();
    };
    const int ended = services.application.run([&] { launchAddOn(services, refuseToRun); }, [] {});
    return ended != 0 ? ended : status;
}

int run(int argumentCount, char** arguments) {
    if (const auto answer = answerTo({arguments + 1, arguments + argumentCount}))
        return std::fputs(answer->c_str(), stdout) < 0;
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

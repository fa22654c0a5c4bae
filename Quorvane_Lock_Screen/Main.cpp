// The entry of the add-on: makes the live tables and runs the main loop.

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

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

constexpr char kHelp[] =
    "Usage: \"Quorvane Lock Screen\" [OPTION]...\n"
    "\n"
    "Shows the playing track on the lock screen. It is installed and started by quorvane-host.\n"
    "\n"
    "Options:\n"
    "  --installed    this copy has just been installed: an earlier removal is void\n"
    "  --uninstall    remove the add-on's login item, files and settings, and quit\n"
    "  -h, --help     show this text and exit\n"
    "  -V, --version  show the version and exit\n";

// What is asked of the program without its being an application, if anything is.
std::optional<std::string> answerTo(const std::vector<std::string>& words) {
    const auto asked = [&](const char* longName, const char* shortName) {
        return AddOnSignals::contains(words, longName) || AddOnSignals::contains(words, shortName);
    };
    if (asked("--help", "-h")) return kHelp;
    if (asked("--version", "-V")) return "Quorvane Lock Screen " QUORVANE_VERSION "\n";
    return std::nullopt;
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

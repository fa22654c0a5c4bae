// Entry point of quorvane-open.

#include <cstdio>

#include "platform/linux/files/BundleLayout.hpp"
#include "platform/linux/processes/DetachedProcess.hpp"
#include "platform/linux/processes/OpenCommandLine.hpp"
#include "platform/linux/processes/RunningApplicationsLinux.hpp"

namespace quorvane {
namespace {

int fail(int status, const std::string& reason) {
    std::fprintf(stderr, "quorvane-open: %s\n", reason.c_str());
    return status;
}

bool isRunning(const PropertyDictionary& properties) {
    const auto* identifier = find<std::string>(properties, "CFBundleIdentifier");
    return identifier != nullptr && !makeRunningApplications().running(*identifier).empty();
}

int openBundle(const OpenCommandLine& line) {
    std::error_code error;
    // Resolve links, because the application derives its bundle from its own resolved path.
    const auto bundle = std::filesystem::canonical(line.bundle, error);
    if (error) return fail(1, line.bundle + ": " + error.message());
    const PropertyDictionary properties = propertiesOfBundle(bundle);
    const auto executable = executableOfBundle(bundle, properties);
    if (!executable)
        return fail(1, line.bundle +
                           ": not an application: it has no Contents/Info.plist that "
                           "names an executable");
    if (!line.isAlwaysNew && isRunning(properties)) return 0;
    if (const auto begun = startDetached(*executable, line.arguments); !begun)
        return fail(1, begun.error().description);
    return 0;
}

int main(int argumentCount, char** arguments) {
    const auto line =
        OpenCommandLine::parse(std::vector<std::string>(arguments + 1, arguments + argumentCount));
    if (!line) return fail(2, line.error() + "\nTry: quorvane-open --help");
    switch (line->command) {
        case OpenCommandLine::Command::help:
            return std::fputs(OpenCommandLine::help().c_str(), stdout) < 0;
        case OpenCommandLine::Command::version:
            return std::puts("quorvane-open " QUORVANE_VERSION) < 0;
        case OpenCommandLine::Command::open: break;
    }
    return openBundle(*line);
}

}  // namespace
}  // namespace quorvane

int main(int argumentCount, char** arguments) { return quorvane::main(argumentCount, arguments); }

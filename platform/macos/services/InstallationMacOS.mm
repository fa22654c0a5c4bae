#import <AppKit/AppKit.h>
#import <ServiceManagement/ServiceManagement.h>

#include "platform/macos/files/FilesMacOS.hpp"
#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"
#include "platform/macos/services/ServicesMacOS.hpp"

namespace quorvane {
namespace {

Result<void> registerItem() {
    NSError* error = nil;
    if ([SMAppService.mainAppService registerAndReturnError:&error]) return {};
    return std::unexpected{errorFrom(error)};
}

Result<void> unregisterItem() {
    NSError* error = nil;
    if ([SMAppService.mainAppService unregisterAndReturnError:&error]) return {};
    return std::unexpected{errorFrom(error)};
}

LoginItemClient makeLoginItem() {
    return {.status = [] { return static_cast<std::int64_t>(SMAppService.mainAppService.status); },
            .registerItem = registerItem,
            .unregisterItem = unregisterItem};
}

Result<void> removeItem(const std::filesystem::path& path) {
    NSError* error = nil;
    if ([NSFileManager.defaultManager removeItemAtURL:urlFrom(path) error:&error]) return {};
    return std::unexpected{errorFrom(error)};
}

bool fileExists(const std::filesystem::path& path) {
    return [NSFileManager.defaultManager fileExistsAtPath:urlFrom(path).path];
}

std::optional<std::string> identity(const std::filesystem::path& bundle) {
    const PropertyDictionary properties = propertiesOfBundleMacOS(bundle);
    const auto* const identifier = find<std::string>(properties, "CFBundleIdentifier");
    return identifier ? std::optional{*identifier} : std::nullopt;
}

RunningCopy copyFrom(NSRunningApplication* application) {
    RunningCopy copy{.pid = application.processIdentifier, .launchDate = std::nullopt};
    // Only applications that the system's launcher started have a launch date.
    if (NSDate* date = application.launchDate) copy.launchDate = wallTimeFrom(date);
    return copy;
}

std::vector<RunningCopy> runningCopies(const std::string& bundleIdentifier) {
    std::vector<RunningCopy> copies;
    for (NSRunningApplication* application in [NSRunningApplication
             runningApplicationsWithBundleIdentifier:stringFrom(bundleIdentifier)])
        if (!application.terminated) copies.push_back(copyFrom(application));
    return copies;
}

RunningApplications makeRunningApplications() {
    return {.running = runningCopies,
            .current = [] { return copyFrom(NSRunningApplication.currentApplication); },
            .terminate =
                [](std::int32_t pid) {
                    [[NSRunningApplication runningApplicationWithProcessIdentifier:pid] terminate];
                }};
}

NSArray<NSString*>* stringsFrom(const std::vector<std::string>& texts) {
    NSMutableArray<NSString*>* strings = [NSMutableArray arrayWithCapacity:texts.size()];
    for (const std::string& text : texts) [strings addObject:stringFrom(text)];
    return strings;
}

Result<OpenCommandEnd> openApplication(const std::filesystem::path& bundle,
                                       const std::vector<std::string>& arguments) {
    // A new instance, not brought to the front.
    std::vector<std::string> words{"-n", "-g", bundle.string()};
    if (!arguments.empty()) {
        words.emplace_back("--args");
        words.insert(words.end(), arguments.begin(), arguments.end());
    }
    NSPipe* pipe = [NSPipe pipe];
    NSTask* task = [[NSTask alloc] init];
    task.executableURL = urlFrom("/usr/bin/open");
    task.arguments = stringsFrom(words);
    task.standardOutput = pipe;
    task.standardError = pipe;
    NSError* error = nil;
    if (![task launchAndReturnError:&error]) return std::unexpected{errorFrom(error)};
    // Read to the end before waiting, because the launcher cannot exit while the pipe is full.
    NSData* output = [pipe.fileHandleForReading readDataToEndOfFileAndReturnError:nil];
    [task waitUntilExit];
    std::string text{textOf(bytesFrom(output))};
    while (text.ends_with('\n')) text.pop_back();
    return OpenCommandEnd{.status = task.terminationStatus, .output = std::move(text)};
}

std::optional<std::filesystem::path> applicationSupport() {
    NSURL* url = [NSFileManager.defaultManager URLsForDirectory:NSApplicationSupportDirectory
                                                      inDomains:NSUserDomainMask]
                     .firstObject;
    if (!url) return std::nullopt;
    return pathFrom(url);
}

}  // namespace

Installation makeInstallationMacOS() {
    return {
        .loginItem = makeLoginItem(),
        .fileManager = {.removeItem = removeItem, .fileExists = fileExists, .identity = identity},
        .runningApplications = makeRunningApplications(),
        .openApplication = openApplication,
        .applicationSupport = applicationSupport()};
}

}  // namespace quorvane

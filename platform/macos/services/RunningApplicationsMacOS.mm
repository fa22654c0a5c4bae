#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

#import <AppKit/AppKit.h>

#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/services/InstallationMacOS.hpp"

namespace quorvane {
namespace {

RunningCopy copyFrom(NSRunningApplication* application) {
    RunningCopy copy{.pid = application.processIdentifier, .launchDate = std::nullopt};
    // Only applications that the system's launcher started have a launch date.
    if (NSDate* date = application.launchDate) copy.launchDate = wallTimeFrom(date);
    return copy;
}

std::vector<RunningCopy> running(const std::string& bundleIdentifier) {
    std::vector<RunningCopy> copies;
    for (NSRunningApplication* application in [NSRunningApplication
             runningApplicationsWithBundleIdentifier:stringFrom(bundleIdentifier)])
        if (!application.terminated) copies.push_back(copyFrom(application));
    return copies;
}

}  // namespace

RunningApplications makeRunningApplicationsMacOS() {
    return {.running = running,
            .current = [] { return copyFrom(NSRunningApplication.currentApplication); },
            .terminate =
                [](std::int32_t pid) {
                    [[NSRunningApplication runningApplicationWithProcessIdentifier:pid] terminate];
                }};
}

}  // namespace quorvane

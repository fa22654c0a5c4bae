// What the rest of the system answers. A test writes it down; the fakes say it.
#pragma once

#import <AppKit/AppKit.h>
#import <ServiceManagement/ServiceManagement.h>

#include <cstdint>
#include <map>

#include "tests/macos_runtime/fakes/Fakes.hpp"

namespace macrt {

struct FakeRunningCopy {
    int pid = 0;
    NSDate* launchDate = nil;
    BOOL isTerminated = NO;
};

struct SystemAnswers {
    // This process and its bundle
    NSOperatingSystemVersion version{26, 1, 2};
    NSString* bundlePath = @"/Applications/Quorvane Lock Screen.app";
    NSString* bundleIdentifier = @"example.quillon.Quorvane.LockScreenAddOn";
    NSDictionary* infoDictionary = nil;
    bool isRightToLeft = false;
    std::vector<FakeRunningCopy> copies{};  // the first is this process
    // Lock state
    NSDictionary* session = nil;
    std::map<std::string, std::uint64_t> notifyStates{};
    std::uint32_t notifyStatus = 0;
    // Files
    NSString* applicationSupport = @"/Users/u/Library/Application Support";
    NSError* fileError = nil;  // of every change
    id propertyList = nil;
    // Services
    NSInteger loginItem = 0;
    NSError* loginItemError = nil;
    int randomStatus = 0;
    bool canSynchronize = true;
    bool hasSuites = true;
    // /usr/bin/open
    NSError* launchError = nil;
    std::string launchOutput{};
    int launchStatus = 0;
    // While the application runs
    std::function<void()> whileRunning{};
};
SystemAnswers& answers();
// What user defaults hold, by domain ("" for the standard one) and key.
std::map<std::string, std::map<std::string, id>>& defaults();

}  // namespace macrt

#include "platform/macos/services/ServicesMacOS.hpp"

#import <Foundation/Foundation.h>
#include <pthread.h>

#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {

ProcessInfo makeProcessInfoMacOS(int argumentCount, char** arguments) {
    @autoreleasepool {
        NSProcessInfo* process = NSProcessInfo.processInfo;
        NSBundle* bundle = NSBundle.mainBundle;
        const NSOperatingSystemVersion version = process.operatingSystemVersion;
        return {
            .arguments = {arguments, arguments + argumentCount},
            .executable = pathFrom(bundle.executableURL),
            .pid = process.processIdentifier,
            .systemVersion = {version.majorVersion, version.minorVersion, version.patchVersion},
            // For a bare executable the system reports its folder as the bundle.
            .bundle =
                bundle.bundleIdentifier ? pathFrom(bundle.bundleURL) : std::filesystem::path{},
            .bundleProperties = propertiesFrom(bundle.infoDictionary),
        };
    }
}

BeginActivity makeBeginActivityMacOS() {
    return [](std::uint64_t options, const std::string& reason) {
        id<NSObject> activity =
            [NSProcessInfo.processInfo beginActivityWithOptions:options reason:stringFrom(reason)];
        return Handle{[activity] { [NSProcessInfo.processInfo endActivity:activity]; }};
    };
}

void nameCurrentThreadMacOS(const std::string& name) {
    pthread_setname_np(name.substr(0, 63).c_str());
}

}  // namespace quorvane

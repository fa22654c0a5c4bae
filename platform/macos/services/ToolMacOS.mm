#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

#import <CoreFoundation/CoreFoundation.h>
#include <signal.h>

#include "platform/macos/services/ApplicationMacOS.hpp"
#include "platform/macos/services/SignalSource.hpp"

namespace quorvane {
namespace {

void terminate() {
    // Deferred to the next turn of the loop, so that the callers' objects outlive their calls.
    dispatch_async(dispatch_get_main_queue(), ^{
      CFRunLoopStop(CFRunLoopGetCurrent());
    });
}

int run(const std::function<void()>& didFinishLaunching,
        const std::function<void()>& willTerminate) {
    @autoreleasepool {
        dispatch_source_t interrupt = startSignalSource(SIGINT, dispatch_get_main_queue(), ^{
          terminate();
        });
        dispatch_async(dispatch_get_main_queue(), ^{
          didFinishLaunching();
        });
        CFRunLoopRun();
        dispatch_source_cancel(interrupt);
    }
    willTerminate();
    return 0;
}

}  // namespace

Application makeToolMacOS() {
    return {.run = run,
            .terminate = terminate,
            .handleTerminationSignal = handleTerminationSignalMacOS};
}

}  // namespace quorvane

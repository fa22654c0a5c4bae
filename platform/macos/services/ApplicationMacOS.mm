#include "platform/macos/services/ServicesMacOS.hpp"

#import <AppKit/AppKit.h>
#include <signal.h>

#include <utility>

#include "platform/macos/foundation/ReferenceCounting.hpp"
#include "platform/macos/services/SignalSource.hpp"

@interface QuorvaneApplicationDelegate : NSObject <NSApplicationDelegate> {
@public
    std::function<void()> didFinishLaunching;
    std::function<void()> willTerminate;
    dispatch_source_t interrupt;
}
@end

@implementation QuorvaneApplicationDelegate
- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    didFinishLaunching();
}

- (void)applicationWillTerminate:(NSNotification*)notification {
    willTerminate();
}

- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)app {
    return YES;
}
@end

namespace quorvane {
namespace {

int run(std::function<void()> didFinishLaunching, std::function<void()> willTerminate) {
    @autoreleasepool {
        NSApplication* application = NSApplication.sharedApplication;
        // The application holds its delegate weakly.
        static QuorvaneApplicationDelegate* delegate;
        delegate = [[QuorvaneApplicationDelegate alloc] init];
        delegate->didFinishLaunching = std::move(didFinishLaunching);
        delegate->willTerminate = std::move(willTerminate);
        application.delegate = delegate;
        [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
        delegate->interrupt = makeSignalSource(SIGINT, dispatch_get_main_queue(), ^{
          [application terminate:nil];
        });
        dispatch_activate(delegate->interrupt);
        [application run];
        // Reached only when the loop was stopped, because `terminate:` ends the process inside
        // `run`.
        delegate = nil;
    }
    return 0;
}

}  // namespace

Application makeApplicationMacOS() {
    return {.run = run,
            .terminate = [] { [NSApplication.sharedApplication terminate:nil]; },
            .handleTerminationSignal = handleTerminationSignalMacOS};
}

}  // namespace quorvane
